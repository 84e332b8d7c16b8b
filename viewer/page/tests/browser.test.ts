// The page in a real browser, with matches of the real arena and a stream of the league's server.

import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { after, before, test } from "node:test";
import type { Page } from "playwright-core";

import { Arena, kSource, opened, Program, Replayer, shows, sleep, startViewer, TempDirectory, TestBrowser } from "./Support.ts";

const kStream = `${kSource}/tests/data/monitor/three-a-side.monitor.gz`;

let browser: TestBrowser;
const directory = new TempDirectory();
const recording = directory.file("match.rec");
const percepts = directory.file("percepts");

// Two robots without brains and one that plays, some seconds long.
async function record(): Promise<void> {
  const arena = await Arena.start([
    "--wait-agents", "3", "--duration", "6", "--seed", "2", "--record", recording, "--record-percepts", percepts,
  ]);
  // Who connects first has the left side.
  arena.join("Others", 2, 0, "-3 2 0");
  await sleep(200);
  arena.join("Quolnaris", 4, 4, "-6 -3 0");
  await sleep(200);
  const player = new Program("quolnaris", ["--player-port", String(arena.agentPort), "--number", "9", "--type", "2"], kSource);
  const trainer = (await import("node:net")).connect(arena.monitorPort, "127.0.0.1");
  await sleep(600);
  for (const command of ["(kickOff Left)", "(score (left 1)(right 0))"]) {
    const frame = Buffer.alloc(4 + command.length);
    frame.writeUInt32BE(command.length);
    frame.write(command, 4);
    trainer.write(frame);
    trainer.resume();
  }
  assert.equal(await arena.program.ended, 0);
  trainer.destroy();
  for (const agent of arena.agents) agent.leave();
  await player.stop("SIGKILL");
}

before(async () => {
  await record();
  browser = await TestBrowser.start();
});
after(async () => {
  // Those of a test that has failed, too: what runs on would hold up the end.
  await Promise.all([browser.stop(), ...Program.running.map((program) => program.stop("SIGKILL"))]);
  directory.remove();
});

// Pixels around a place of the screen, as red, green, blue.
async function pixels(page: Page, x: number, y: number, radius: number): Promise<[number, number, number][]> {
  const clip = { x: Math.round(x - radius), y: Math.round(y - radius), width: 2 * radius, height: 2 * radius };
  const png = (await page.screenshot({ clip })).toString("base64");
  const values = await page.evaluate(async (data) => {
    const image = new Image();
    image.src = `data:image/png;base64,${data}`;
    await image.decode();
    const canvas = document.createElement("canvas");
    canvas.width = image.width;
    canvas.height = image.height;
    const pen = canvas.getContext("2d");
    pen?.drawImage(image, 0, 0);
    return [...(pen?.getImageData(0, 0, canvas.width, canvas.height).data ?? [])];
  }, png);
  return Array.from({ length: values.length / 4 }, (_, i) => [values[4 * i] ?? 0, values[4 * i + 1] ?? 0, values[4 * i + 2] ?? 0]);
}

const share = (all: [number, number, number][], what: (p: [number, number, number]) => boolean): number => all.filter(what).length / all.length;
const isGrass = ([r, g, b]: [number, number, number]): boolean => g > r + 15 && g > b + 15;
const isBlue = ([r, g, b]: [number, number, number]): boolean => b > r + 40 && b > g + 15;
const isRed = ([r, g, b]: [number, number, number]): boolean => r > g + 40 && r > b + 40;

test("a recording opens and shows robots where it has them", async () => {
  const errors: string[] = [];
  const viewer = await startViewer([recording]);
  const page = await browser.page(viewer.url, errors);
  await opened(page);
  await page.evaluate(() => window.viewer.seek(window.viewer.cycles() - 20));
  await page.keyboard.press("n"); // no labels in front of the robots
  await page.keyboard.press("t");
  await page.keyboard.press("2"); // from above
  await sleep(700);
  const robots = await page.evaluate(() =>
    (window.viewer.shown()?.robots ?? []).map(({ side, number, pose }) => ({
      side, number, pose: [...pose], at: window.viewer.project(pose[0] ?? 0, pose[1] ?? 0, pose[2] ?? 0),
    })),
  );
  assert.deepEqual(robots.map(({ side, number }) => `${side}/${number}`).sort(), ["0/2", "1/4", "1/9"]);
  const other = robots.find(({ number }) => number === 2);
  // A beam may end 5 cm aside.
  assert.ok(Math.hypot((other?.pose[0] ?? 0) + 3, (other?.pose[1] ?? 0) - 2) < 0.5);
  for (const robot of robots) {
    assert.ok(robot.at);
    const seen = await pixels(page, robot.at[0], robot.at[1], 10);
    const colour = robot.side === 0 ? isBlue : isRed;
    assert.ok(share(seen, colour) > 0.01, `no robot ${robot.number} at ${robot.at}`);
    const beside = await pixels(page, robot.at[0] + 45, robot.at[1] + 25, 6);
    assert.ok(share(beside, isGrass) > 0.9, "no grass beside it");
    assert.equal(share(beside, colour), 0);
  }
  assert.deepEqual(errors, []);
  await page.close();
  await viewer.program.stop();
});

test("timeline, keys and buttons move in time; a screen reader finds them", async () => {
  const viewer = await startViewer([recording]);
  const page = await browser.page(viewer.url);
  await opened(page);
  const position = (): Promise<number> => page.evaluate(() => window.viewer.position());
  // It opens where its robots have come.
  const begin = await position();
  assert.equal(await page.evaluate(() => window.viewer.shown()?.robots.length), 3);
  await page.keyboard.press(".");
  assert.equal(await position(), begin + 1);
  await page.getByRole("button", { name: "One cycle back" }).click();
  assert.equal(await position(), begin);
  await page.locator("#view").focus();
  await page.keyboard.press(" ");
  await page.waitForFunction((from) => window.viewer.position() > from + 10, begin);
  await page.getByRole("button", { name: "Pause" }).click();
  assert.equal(await page.evaluate(() => window.viewer.playing()), false);
  await page.keyboard.press("Home");
  assert.equal(await position(), 0);
  await page.locator("#view").focus();
  await page.keyboard.press("]");
  const marks = await page.evaluate(() => window.viewer.marks());
  assert.ok(marks.some(({ kind, text }) => kind === "mode" && text === "KickOff_Left"), JSON.stringify(marks));
  assert.equal(await position(), marks.find(({ kind, cycle }) => kind === "mode" && cycle > 0)?.cycle);
  const slider = page.getByRole("slider", { name: "Moment of the match" });
  const box = await slider.boundingBox();
  assert.ok(box);
  await page.mouse.click(box.x + box.width * 0.75, box.y + 12);
  const cycles = await page.evaluate(() => window.viewer.cycles());
  assert.ok(Math.abs((await position()) - 0.75 * cycles) < 0.03 * cycles);
  await page.getByRole("combobox", { name: "Camera" }).selectOption("player");
  assert.equal(await page.evaluate(() => window.viewer.camera()), "player");
  assert.notEqual(await page.evaluate(() => window.viewer.chosen()), "");
  await page.keyboard.press("Escape");
  await page.locator("#view").focus();
  for (const [key, camera] of [["1", "orbit"], ["2", "above"], ["3", "ball"], ["4", "player"], ["5", "eyes"]] as const) {
    await page.keyboard.press(key);
    assert.equal(await page.evaluate(() => window.viewer.camera()), camera);
  }
  // A button or a list that the pointer has used does not keep the keys for itself.
  await page.getByRole("button", { name: "Ball trail" }).click();
  await page.keyboard.press(".");
  const paused = await position();
  await page.keyboard.press(" ");
  await page.waitForFunction((from) => window.viewer.position() > from, paused);
  await page.locator("#camera").dispatchEvent("pointerdown");
  await page.locator("#camera").focus();
  await page.locator("#camera").selectOption("orbit");
  await page.keyboard.press(".");
  assert.equal(await page.evaluate(() => window.viewer.playing()), false);
  await page.keyboard.press("?");
  assert.ok(await page.getByRole("dialog", { name: "Help" }).isVisible());
  await page.keyboard.press("Escape");
  assert.match((await page.getByRole("status", { name: "Score" }).textContent()) ?? "", /\d+ : \d+/);
  assert.match((await page.getByLabel("Game time").textContent()) ?? "", /^\d+:\d\d$/);
  // Dark and light differ.
  const background = (): Promise<string> => page.evaluate(() => getComputedStyle(document.body).backgroundColor);
  const dark = await background();
  await page.keyboard.press("d");
  assert.notEqual(await background(), dark);
  await page.close();
  await viewer.program.stop();
});

test("a phone shows everything, upright and on its side", async () => {
  const viewer = await startViewer([recording]);
  const page = await browser.page(viewer.url);
  for (const [width, height] of [[390, 780], [780, 360]] as const) {
    await page.setViewportSize({ width, height });
    await opened(page);
    const box = async (id: string): Promise<{ x: number; y: number; width: number; height: number }> => {
      const found = await page.locator(`#${id}`).boundingBox();
      assert.ok(found, id);
      return found;
    };
    for (const id of ["board", "tools", "bar", "play", "time", "camera", "player", "help"]) {
      const { x, y, width: w, height: h } = await box(id);
      const within = x >= 0 && y >= 0 && x + w <= width + 1 && y + h <= height + 1;
      assert.ok(within, `${id} ${JSON.stringify({ x, y, w, h })} of ${width} x ${height}`);
    }
    const [board, tools, bar] = [await box("board"), await box("tools"), await box("bar")];
    assert.ok(tools.y >= board.y + board.height || tools.x >= board.x + board.width, "tools lie over the board");
    assert.ok(bar.y >= tools.y + tools.height, "the bar lies over the tools");
    // The pitch from end to end, with no goal beyond the edge.
    await sleep(500);
    const ends = await page.evaluate(() => [[-15, -10], [-15, 10], [15, -10], [15, 10]].map(([x, y]) => window.viewer.project(x ?? 0, y ?? 0, 0)));
    for (const end of ends) assert.ok(end && end[0] >= 0 && end[0] <= width && end[1] >= 0 && end[1] <= height, `${end} of ${width} x ${height}`);
  }
  await page.close();
  await viewer.program.stop();
});

test("what a player believed lies over what was", async () => {
  const viewer = await startViewer([recording, "--percepts", percepts]);
  const page = await browser.page(viewer.url);
  await opened(page);
  await page.evaluate(() => window.viewer.seek(200));
  await page.locator("#player").selectOption("right/9");
  await page.getByRole("button", { name: "Mind" }).click();
  await shows(page, () => window.viewer.belief() !== undefined);
  const compared = await page.evaluate(() => {
    const belief = window.viewer.belief();
    const truth = window.viewer.shown()?.robots.find(({ side, number }) => side === 1 && number === 9);
    return { row: window.viewer.mindRow(), sensed: [...(belief?.self.joints ?? [])], true: [...(truth?.joints ?? [])] };
  });
  // The hinges that it sensed are those of the same cycle, in the percept's two decimals.
  assert.equal(compared.sensed.length, 22);
  compared.sensed.forEach((angle, i) => assert.ok(Math.abs(angle - (compared.true[i] ?? 0)) < 0.011, `hinge ${i}`));
  assert.match((await page.locator("#head").textContent()) ?? "", /byte for byte/);
  assert.ok((await page.locator("#head figure").count()) >= 3);
  // The cursor of the plots is tied to the timeline.
  const plot = await page.locator("#head figure canvas").first().boundingBox();
  assert.ok(plot);
  await page.mouse.click(plot.x + plot.width / 4, plot.y + 20);
  assert.notEqual(await page.evaluate(() => Math.round(window.viewer.position())), 200);
  await page.locator("#player").selectOption("left/2");
  await shows(page, () => /differ|does not tell|Nothing/.test(document.getElementById("head")?.textContent ?? ""));
  await page.close();
  await viewer.program.stop();
});

test("the exported file opens by itself, without a network", async (context) => {
  const file = directory.file("match.html");
  const exported = new Program("viewer", ["--export", file, recording]);
  assert.equal(await exported.ended, 0, exported.output);
  const alone = await TestBrowser.start();
  context.after(() => alone.stop());
  await alone.offline();
  const errors: string[] = [];
  const page = await alone.page(`file://${file}`, errors);
  const requests: string[] = [];
  page.on("request", (request) => requests.push(request.url()));
  await opened(page);
  await page.evaluate(() => window.viewer.seek(window.viewer.cycles() - 5));
  await shows(page, () => (window.viewer.shown()?.robots.length ?? 0) === 3);
  assert.deepEqual(errors, []);
  assert.deepEqual(requests.filter((url) => !url.startsWith("data:")), []);
});

test("a live match advances, obeys the trainer, and comes back with its server", async () => {
  let arena = await Arena.start(["--real-time"]);
  const { monitorPort } = arena;
  const viewer = await startViewer(["--monitor", `127.0.0.1:${monitorPort}`]);
  const page = await browser.page(viewer.url);
  const fill = async (): Promise<void> => {
    arena.join("Alpha", 3, 0, "-4 2 0");
    await sleep(200);
    arena.join("Beta", 5, 1, "-4 -2 0");
  };
  await fill();
  await opened(page);
  await shows(page, () => (window.viewer.shown()?.robots.length ?? 0) === 2);
  const cycles = await page.evaluate(() => window.viewer.cycles());
  await sleep(1000);
  assert.ok((await page.evaluate(() => window.viewer.cycles())) > cycles + 10);
  assert.ok(await page.evaluate(() => window.viewer.following()));

  await page.getByRole("button", { name: "Trainer" }).click();
  await page.getByRole("button", { name: "Kick-off left" }).click();
  await shows(page, () => document.getElementById("mode")?.textContent === "kick-off Alpha");
  await page.getByLabel("Score of the right team").fill("4");
  await page.getByRole("button", { name: "Set score" }).click();
  await shows(page, () => window.viewer.shown()?.score[1] === 4);
  await page.getByLabel("Play mode to set").selectOption("PlayOn");
  await shows(page, () => document.getElementById("mode")?.textContent === "play on");

  // The ball is dragged, and so is a player.
  const drag = async (from: [number, number], to: [number, number]): Promise<void> => {
    const [a, b] = await page.evaluate(
      ([p, q]) => [window.viewer.project(p[0], p[1], 0), window.viewer.project(q[0], q[1], 0)] as const, [from, to] as const,
    );
    assert.ok(a && b);
    await page.mouse.move(a[0], a[1]);
    await page.mouse.down();
    await page.mouse.move(b[0], b[1], { steps: 4 });
    await page.mouse.up();
  };
  await drag([0, 0], [2, 3]);
  await shows(page, () => Math.hypot((window.viewer.shown()?.ball[0] ?? 0) - 2, (window.viewer.shown()?.ball[1] ?? 0) - 3) < 0.3);
  const place = await page.evaluate(() => [...(window.viewer.shown()?.robots.find(({ number }) => number === 3)?.pose ?? [])]);
  await drag([place[0] ?? 0, place[1] ?? 0], [-7, -3]);
  await shows(page, () => {
    const pose = window.viewer.shown()?.robots.find(({ number }) => number === 3)?.pose;
    return Math.hypot((pose?.[0] ?? 0) + 7, (pose?.[1] ?? 0) + 3) < 0.4;
  });
  await page.locator("#player").selectOption("right/5");
  await page.getByRole("button", { name: "Remove the chosen player" }).click();
  await shows(page, () => window.viewer.shown()?.robots.length === 1);

  await arena.stop();
  await shows(page, () => document.getElementById("live")?.classList.contains("gone") ?? false);
  arena = await Arena.start(["--real-time"], monitorPort);
  await fill();
  await shows(page, () => !document.getElementById("live")?.classList.contains("gone") && window.viewer.shown()?.robots.length === 2);
  const notes = await page.evaluate(() => window.viewer.marks().filter(({ kind }) => kind === "note").map(({ text }) => text));
  assert.deepEqual(notes, ["the server has gone", "the server is back"]);

  // Back in time while it goes on.
  await page.evaluate(() => window.viewer.seek(10));
  await shows(page, () => Math.round(window.viewer.position()) === 10 && window.viewer.shown() !== undefined);
  await page.keyboard.press("l");
  await shows(page, () => window.viewer.following() && window.viewer.cycles() - window.viewer.position() < 30);

  // What the page has seen can still be looked at when the viewer has ended: the first server's game,
  // whose clock ran.
  await viewer.program.stop();
  await page.evaluate(() => {
    const gone = window.viewer.marks().find(({ text }) => text === "the server has gone");
    window.viewer.seek((gone?.cycle ?? 0) - 20);
  });
  await shows(page, () => (window.viewer.shown()?.time ?? 0) > 0);
  await page.close();
  await arena.stop();
});

test("read-only means that there is no trainer", async () => {
  const arena = await Arena.start(["--real-time"]);
  arena.join("Alpha", 3, 0, "-4 2 0");
  const viewer = await startViewer(["--read-only", "--monitor", `127.0.0.1:${arena.monitorPort}`]);
  const page = await browser.page(viewer.url);
  await opened(page);
  assert.equal(await page.locator("#train").isVisible(), false);
  // Also who asks without the button is not heard.
  await page.evaluate(() => {
    const socket = new WebSocket(`ws://${location.host}/socket`);
    socket.onopen = () => socket.send(JSON.stringify({ trainer: "score", left: 9, right: 9 }));
  });
  await sleep(800);
  assert.deepEqual(await page.evaluate(() => window.viewer.shown()?.score), [0, 0]);
  await page.close();
  await viewer.program.stop();
  await arena.stop();
});

test("a stream of the league's server is shown", async () => {
  const server = await Replayer.start(kStream);
  const viewer = await startViewer(["--monitor", `127.0.0.1:${server.port}`]);
  const page = await browser.page(viewer.url);
  await opened(page);
  await shows(page, () => (window.viewer.shown()?.time ?? 0) > 38);
  const robots = await page.evaluate(() => (window.viewer.shown()?.robots ?? []).map(({ side, number, type }) => `${side}/${number}/${type}`));
  assert.deepEqual(robots.sort(), ["0/1/0", "0/11/4", "0/9/1", "1/1/0", "1/11/4"]);
  assert.equal(await page.locator("#mode").textContent(), "free kick Quolnaris");
  assert.equal(await page.locator("#score").textContent(), "1 : 0");
  await page.close();
  await viewer.program.stop();
  server.stop();
});

test("a stream that is none gives a clear message", async () => {
  const nonsense = Buffer.concat([Buffer.from([0, 0, 0, 5]), Buffer.from("hello")]);
  const server = await Replayer.start(kStream, () => [nonsense]);
  const viewer = await startViewer(["--monitor", `127.0.0.1:${server.port}`]);
  const page = await browser.page(viewer.url);
  await shows(page, () => /no monitor stream/.test(document.getElementById("cover-text")?.textContent ?? ""));
  await page.close();
  await viewer.program.stop();
  server.stop();
});

test("damaged, cut and empty recordings give a clear message", async () => {
  const whole = readFileSync(recording);
  const cases: [string, Buffer, RegExp][] = [
    ["empty", Buffer.alloc(0), /no match recording/],
    ["other", Buffer.from("a text"), /no match recording/],
    ["headonly", Buffer.from("QNRMATCH\x01", "latin1"), /holds no cycle/],
    ["version", Buffer.from("QNRMATCH\x09", "latin1"), /version 9/],
    ["nonsense", Buffer.from("QNRMATCH\x01Zzzz", "latin1"), /damaged/],
  ];
  for (const [name, content, message] of cases) {
    const file = directory.file(`${name}.rec`);
    writeFileSync(file, content);
    const viewer = new Program("viewer", [file]);
    assert.notEqual(await viewer.ended, 0, name);
    assert.match(viewer.output, message, name);
  }
  const missing = new Program("viewer", [directory.file("missing.rec")]);
  assert.notEqual(await missing.ended, 0);
  assert.match(missing.output, /cannot read/);

  const cut = directory.file("cut.rec");
  writeFileSync(cut, whole.subarray(0, whole.length / 2));
  const viewer = await startViewer([cut]);
  assert.match(viewer.program.output, /cut off/);
  const page = await browser.page(viewer.url);
  await opened(page);
  const notes = await page.evaluate(() => window.viewer.marks().filter(({ kind }) => kind === "note"));
  assert.match(notes[0]?.text ?? "", /cut off/);
  await page.close();
  await viewer.program.stop();
});
