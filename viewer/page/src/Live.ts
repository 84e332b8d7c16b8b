// The connection to a live viewer: news of the match in, a trainer's commands out.

import { Film } from "./Film.ts";
import type { FilmIndex, News } from "./Index.ts";
import type { Command } from "./Trainer.ts";

export interface LiveListener {
  // A film begins anew: at the first connection, or when the viewer itself was started again.
  film(index: FilmIndex): void;
  changed(): void;
  status(connected: boolean, text: string): void;
}

const kPause = 1000; // ms between two attempts

export class Live {
  private socket?: WebSocket;
  private film?: Film;

  constructor(private readonly listener: LiveListener) {}

  attach(film: Film): void {
    this.film = film;
  }

  connect(): void {
    const socket = new WebSocket(`ws://${location.host}/socket`);
    socket.binaryType = "arraybuffer";
    socket.addEventListener("message", ({ data }: MessageEvent<string | ArrayBuffer>) => {
      if (typeof data === "string") this.onNews(JSON.parse(data) as News);
      else this.onPicture(data);
    });
    socket.addEventListener("close", () => {
      this.listener.status(false, "The viewer does not answer; trying again");
      setTimeout(() => this.connect(), kPause);
    });
    this.socket = socket;
  }

  send(command: Command): void {
    if (this.socket?.readyState === WebSocket.OPEN) this.socket.send(JSON.stringify(command));
  }

  private onPicture(data: ArrayBuffer): void {
    this.film?.addPicture(new DataView(data).getUint32(0, true), new Uint8Array(data, 4));
    this.listener.changed();
  }

  private onNews(news: News): void {
    switch (news.news) {
      case "film":
        this.listener.film(news.film);
        this.listener.status(news.film.connected ?? false, news.film.status ?? "");
        return;
      case "chunk":
        this.film?.addChunk(news.chunk);
        return;
      case "mark":
        this.film?.addMark(news.mark);
        return;
      case "status":
        if (this.film) {
          this.film.index.teams = news.teams;
          this.film.index.pitch.length = news.length;
          this.film.index.pitch.width = news.width;
        }
        this.listener.status(news.connected, news.status);
    }
  }
}
