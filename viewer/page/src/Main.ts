// Opens the film that the page holds, or that of the server that it came from.

import { App, cover } from "./App.ts";
import { Film, KeptSource, PageSource, ServerSource } from "./Film.ts";
import { checkIndex, type FilmIndex } from "./Index.ts";
import { Live } from "./Live.ts";

function fail(error: unknown): void {
  cover("The match cannot be shown", error instanceof Error ? error.message : String(error));
}

async function showRecorded(film: Film): Promise<void> {
  const opening = await film.opening();
  if (opening === undefined) throw new Error(film.failures[0] ?? "The recording holds nothing.");
  new App(film, { opening });
}

function showLive(): void {
  let app: App | undefined;
  let film: Film | undefined;
  const live = new Live({
    film(index: FilmIndex) {
      app?.stop();
      film = new Film(checkIndex(index), new KeptSource(new ServerSource()));
      live.attach(film);
      app = new App(film, { send: (command) => live.send(command) });
    },
    changed: () => app?.grown(),
    status(connected, text) {
      if (app) app.connection(connected, text);
      else cover(connected ? "Waiting for the match" : "No match yet", text);
    },
  });
  live.connect();
}

async function open(): Promise<void> {
  const own = PageSource.index();
  if (own) return showRecorded(new Film(checkIndex(own), new PageSource()));
  if (location.protocol === "file:") throw new Error("This page was saved without a match. The viewer's --export writes one with it.");
  const index = checkIndex(await ServerSource.index());
  if (index.live) showLive();
  else await showRecorded(new Film(index, new ServerSource()));
}

open().catch(fail);
