// Units of the page, without a browser.

import assert from "node:assert/strict";
import { test } from "node:test";
import { deflateSync } from "node:zlib";

import { ByteReader, inflate, readChunk, type Cycle } from "../src/Chunk.ts";
import { Film, fromBase64, KeptSource, type Source } from "../src/Film.ts";
import type { FilmIndex, RobotModel } from "../src/Index.ts";
import { between, headingOf, rotate, Skeleton } from "../src/Kinematics.ts";
import { Mind } from "../src/Mind.ts";
import { cycleBetween } from "../src/Moment.ts";
import { clockText, Playback } from "../src/Playback.ts";
import { markText, modeText } from "../src/Timeline.ts";

const near = (actual: number | undefined, wanted: number, by = 1e-4): void =>
  assert.ok(Math.abs((actual ?? Number.NaN) - wanted) < by, `${actual} is not ${wanted}`);

function unsigned(value: number): number[] {
  return value < 128 ? [value] : [(value % 128) + 128, ...unsigned(Math.floor(value / 128))];
}
const signed = (value: number): number[] => unsigned(value >= 0 ? 2 * value : -2 * value - 1);
const kUpright = [10000, 0, 0, 0];

// Chunk with one robot of type 0 that goes 0.1 m a cycle.
function chunk(first: number, cycles: number): Uint8Array<ArrayBuffer> {
  const bytes = [..."T"].map((c) => c.charCodeAt(0)).concat([0, 2, 65, 66], [82, 1, 0, 7, 0]);
  for (let i = 0; i < cycles; ++i) {
    const time = new Uint8Array(new Float32Array([(first + i) * 0.02]).buffer);
    bytes.push(67, ...time, 3, 1, 0, 2);
    const fresh = i === 0;
    bytes.push(...[0, 0, fresh ? 420 : 0, ...(fresh ? kUpright : [0, 0, 0, 0])].flatMap(signed));
    bytes.push(...[fresh ? first * 1000 : 1000, -5, fresh ? 4000 : 0, ...(fresh ? kUpright : [0, 0, 0, 0])].flatMap(signed));
    for (let j = 0; j < 22; ++j) bytes.push(...signed(fresh ? 100 * j : 0));
    if (i === 1) bytes.push(71, 0, 0, 7, 70, 6, 1, 3);
  }
  return new Uint8Array(bytes);
}

test("a chunk gives its cycles", () => {
  const cycles = readChunk(chunk(10, 3));
  assert.equal(cycles.length, 3);
  const robot = cycles[2]?.robots[0];
  assert.deepEqual([robot?.side, robot?.number, robot?.type, cycles[2]?.mode], [0, 7, 0, 3]);
  assert.deepEqual([cycles[2]?.teams, cycles[2]?.score], [["AB", ""], [0, 2]]);
  near(robot?.pose[0], 1.2);
  near(robot?.pose[1], -0.0015);
  near(robot?.joints[21], 21);
  near(cycles[2]?.time, 0.24);
  near(cycles[0]?.ball[2], 0.042);
});

test("a damaged chunk is an error, wherever it is cut", () => {
  const whole = chunk(0, 2);
  let complete = 0;
  for (let size = 0; size < whole.length; ++size) {
    try {
      readChunk(whole.slice(0, size));
      ++complete;
    } catch (error) {
      assert.match(String(error), /film is damaged/);
    }
  }
  assert.ok(complete < 10); // where a block ends
  assert.throws(() => readChunk(new Uint8Array([88])), /unknown block/);
  assert.throws(() => readChunk(new Uint8Array([82, 200, 1])), /too many robots/);
  assert.throws(() => new ByteReader(new Uint8Array(20).fill(255)).unsigned(), /damaged/);
});

test("numbers of many bytes keep their value", () => {
  for (const value of [0, 1, -1, 63, -64, 64, 12345678, -98765432109]) {
    assert.equal(new ByteReader(new Uint8Array(signed(value))).signed(), value);
  }
});

test("what zlib has packed is unpacked", async () => {
  const bytes = new Uint8Array([1, 2, 3, 250]);
  assert.deepEqual(await inflate(new Uint8Array(deflateSync(bytes))), bytes);
  await assert.rejects(inflate(new Uint8Array([1, 2, 3])));
  assert.deepEqual(fromBase64("AP/+\n"), new Uint8Array([0, 255, 254]));
});

const kModel: RobotModel = {
  bodies: [
    { name: "body", parent: -1, position: [0, 0, 0], shape: "box", size: [0.1, 0.1, 0.2] },
    { name: "arm", parent: 0, position: [0.2, 0, 0], shape: "box", size: [0.1, 0.1, 0.1] },
    { name: "hand", parent: 1, position: [0.4, 0, 0], shape: "sphere", size: [0.1, 0, 0] },
  ],
  joints: [
    { name: "a", child: 1, parent: 0, anchor: [0.1, 0, 0], axis: [0, 0, 2] },
    { name: "b", child: 2, parent: 1, anchor: [0.3, 0, 0], axis: [0, 1, 0] },
  ],
};

test("bodies follow their hinges", () => {
  const poses = new Float32Array(21);
  // The torso stands at (1, 2, 3), turned by 90 degrees to the left.
  const torso = [1, 2, 3, Math.SQRT1_2, 0, 0, Math.SQRT1_2];
  new Skeleton(kModel).place(torso, [90, 0], poses);
  // In the torso's frame: the anchor at 0.1 x, from there the arm along y.
  [0.9, 2.1, 3].forEach((wanted, i) => near(poses[7 + i], wanted));
  [0.7, 2.1, 3].forEach((wanted, i) => near(poses[14 + i], wanted));
  new Skeleton(kModel).place([0, 0, 0, 1, 0, 0, 0], [0, -90], poses);
  [0.3, 0, 0.1].forEach((wanted, i) => near(poses[14 + i], wanted));
});

test("headings and turns", () => {
  near(headingOf([0, 0, 0, 1, 0, 0, 0]), 90); // the front is the body's y axis
  near(headingOf([0, 0, 0, Math.SQRT1_2, 0, 0, -Math.SQRT1_2]), 0);
  const half = new Float32Array(7);
  between([0, 0, 0, 1, 0, 0, 0], [2, 0, 0, 0, 0, 0, -1], 0.5, half);
  near(half[0], 1);
  rotate([half[3] ?? 0, half[4] ?? 0, half[5] ?? 0, half[6] ?? 0], [1, 0, 0]).forEach((v, i) => near(v, [0, -1, 0][i] ?? 0));
});

test("between two cycles, who jumps is shown at one of the two places", () => {
  const [a, b] = readChunk(chunk(0, 2));
  assert.ok(a && b);
  near(cycleBetween(a, b, 0.5).robots[0]?.pose[0], 0.05);
  const away = { ...b, robots: b.robots.map((robot) => ({ ...robot, pose: robot.pose.map((v, i) => (i === 0 ? 9 : v)) })) };
  near(cycleBetween(a, away, 0.5).robots[0]?.pose[0], 0);
  assert.equal(cycleBetween(a, undefined, 0.5), a);
});

function index(chunks: number): FilmIndex {
  return {
    version: 1, title: "t", cycleSeconds: 0.02, chunkCycles: 10, cycles: chunks * 10, teams: ["A", "B"],
    chunks: Array.from({ length: chunks }, (_, i) => ({ number: i, first: i * 10, cycles: 10, time: i * 0.2 })),
    marks: [], playModes: [], robots: [], minds: [],
    pitch: { length: 30, width: 20, goalWidth: 2.1, goalDepth: 0.6, goalHeight: 0.8, circle: 2, penaltyLength: 1.8, penaltyWidth: 6, ballRadius: 0.042 },
  };
}

const packed = (bytes: Uint8Array): Uint8Array<ArrayBuffer> => new Uint8Array(deflateSync(bytes));

class CountingSource implements Source {
  asked: number[] = [];
  chunk(number: number): Promise<Uint8Array<ArrayBuffer>> {
    this.asked.push(number);
    if (number === 7) return Promise.reject(new Error("gone"));
    return Promise.resolve(packed(chunk(number * 10, 10)));
  }
  mind(): Promise<Uint8Array<ArrayBuffer>> {
    return Promise.reject(new Error("none"));
  }
}

// The cycle, when it has come.
async function load(film: Film, cycle: number): Promise<Cycle | undefined> {
  const come = new Promise<void>((resolve) => (film.onChange = resolve));
  if (!film.at(cycle)) await come;
  return film.at(cycle);
}

test("a film unpacks what is looked at, once, and forgets what is far", async () => {
  const source = new CountingSource();
  const film = new Film(index(60), source);
  assert.equal(film.at(25), undefined);
  near((await load(film, 25))?.robots[0]?.pose[0], 2.5);
  near(film.at(29)?.robots[0]?.pose[0], 2.9);
  assert.deepEqual(source.asked, [2]);
  for (let i = 10; i < 60; ++i) await load(film, i * 10);
  assert.equal(film.at(25), undefined);
  assert.equal(film.chunkOf(600), undefined);
});

test("a chunk that cannot be had is told of and not asked for again", async () => {
  const source = new CountingSource();
  const film = new Film(index(10), source);
  await load(film, 70);
  film.at(70);
  film.at(71);
  assert.deepEqual(film.failures, ["gone"]);
  assert.deepEqual(source.asked, [7]);
});

test("a film opens where its robots have come", async () => {
  const opening = (chunk: () => Promise<Uint8Array<ArrayBuffer>>): Promise<number | undefined> =>
    new Film(index(1), { chunk, mind: () => Promise.reject(new Error("none")) }).opening();
  const empty = [67, 0, 0, 0, 0, 3, 1, 0, 2, ...Array<number>(7).fill(0)];
  const bytes = (...parts: Iterable<number>[]): (() => Promise<Uint8Array<ArrayBuffer>>) => () =>
    Promise.resolve(packed(new Uint8Array(parts.flatMap((part) => [...part]))));
  assert.equal(await opening(bytes(empty, empty, chunk(0, 3))), 2);
  assert.equal(await opening(bytes(empty, empty)), 0);
  assert.equal(await opening(bytes(chunk(0, 3))), 0);
  assert.equal(await opening(bytes([88])), undefined);
});

test("a live film grows", () => {
  const film = new Film(index(1), new CountingSource());
  film.addPicture(10, chunk(10, 1));
  assert.equal(film.last, 10);
  near(film.at(10)?.time, 0.2);
  film.addChunk({ number: 1, first: 10, cycles: 10, time: 0.2 });
  assert.equal(film.chunkOf(12)?.number, 1);
});

test("a live film has what it has seen when its source is gone", async () => {
  const source = new CountingSource();
  const kept = new KeptSource(source);
  const film = new Film(index(1), kept);
  film.addChunk({ number: 1, first: 10, cycles: 10, time: 0.2 });
  film.addChunk({ number: 7, first: 70, cycles: 10, time: 1.4 });
  assert.deepEqual(source.asked, [1, 7]);
  source.chunk = () => Promise.reject(new Error("no answer"));
  near((await load(film, 15))?.robots[0]?.pose[0], 1.5);
  await assert.rejects(kept.chunk(0), /no answer/);
  await assert.rejects(kept.chunk(7), /no answer/); // it could not be kept
});

test("what is damaged anywhere is read or refused, and fast", () => {
  const whole = chunk(3, 40);
  let seed = 7;
  const random = (below: number): number => (seed = (seed * 48271) % 0x7fffffff) % below;
  let refused = 0;
  for (let i = 0; i < 3000; ++i) {
    const bytes = whole.slice(0, 1 + random(whole.length));
    for (let flips = random(4); flips >= 0; --flips) bytes[random(bytes.length)] = random(256);
    try {
      for (const { robots, ball } of readChunk(bytes)) {
        assert.ok(robots.length <= 64 && ball.every(Number.isFinite));
        for (const { pose } of robots) assert.ok(pose.every(Number.isFinite));
      }
    } catch (error) {
      assert.match(String(error), /film is damaged/);
      ++refused;
    }
  }
  assert.ok(refused > 1000);
});

test("playing, stepping, speeds and the ends", () => {
  const range = { first: 5, last: 105 };
  const playback = new Playback(() => range, 0.02);
  playback.seek(0);
  assert.equal(playback.position, 5);
  playback.toggle();
  playback.advance(0.1, () => true);
  near(playback.position, 10);
  playback.faster(4);
  assert.equal(playback.speed, 16);
  playback.faster(9);
  assert.equal(playback.speed, 16);
  playback.advance(0.1, () => false);
  near(playback.position, 10); // waits for what is not there
  playback.advance(10, () => true);
  assert.deepEqual([playback.position, playback.playing], [105, false]);
  playback.toggle();
  assert.deepEqual([playback.position, playback.playing], [5, true]);
  playback.step(1);
  assert.deepEqual([playback.position, playback.playing], [6, false]);
});

test("following stays near the present, also when it comes in bursts", () => {
  const range = { first: 0, last: 0 };
  const playback = new Playback(() => range, 0.04);
  playback.playing = playback.following = true;
  let largest = 0;
  for (let picture = 0; picture < 600; ++picture) {
    if (picture % 15 === 14) range.last += 6;
    const before = playback.position;
    playback.advance(1 / 60, () => true);
    if (picture > 100) largest = Math.max(largest, playback.position - before);
    assert.ok(playback.position <= range.last && playback.position >= before);
  }
  assert.ok(range.last - playback.position < 10);
  assert.ok(largest < 1.2, `${largest} cycles in one picture`);
  range.last += 1000;
  playback.advance(1 / 60, () => true);
  assert.ok(range.last - playback.position <= 3);
});

test("words for people", () => {
  assert.equal(clockText(299.9999999), "5:00");
  assert.equal(clockText(61.5), "1:01");
  assert.equal(modeText("corner_kick_left", ["Alpha", ""]), "corner kick Alpha");
  assert.equal(modeText("KickOff_Right", ["Alpha", ""]), "kick-off right");
  assert.equal(modeText("unheard_of", ["", ""]), "unheard_of");
  const mark = { kind: "goal" as const, cycle: 1, side: 0, number: 7, text: "goal" };
  assert.equal(markText(mark, ["Alpha", "Beta"]), "goal for Alpha 7");
});

test("a mind gives numbers, words and gaps", () => {
  const header = JSON.stringify({
    version: 1, player: "left/7", frames: 3, firstCycle: 4, verdict: "", same: true,
    columns: [
      { name: "x", label: "X", unit: "m", group: "Self", scale: 0.001 },
      { name: "motion", label: "Motion", unit: "", group: "Motion", scale: 1, texts: ["none", "walk"] },
    ],
  });
  const bytes = [...unsigned(header.length), ...new TextEncoder().encode(header)];
  bytes.push(...[1500, -1500 - 2 ** 31, 2 ** 31 - 250].flatMap(signed), ...[0, 1, 0].flatMap(signed));
  const mind = Mind.read(new Uint8Array(bytes));
  near(mind.value("x", 0), 1.5);
  assert.ok(Number.isNaN(mind.value("x", 1)));
  near(mind.value("x", 2), -0.25);
  assert.equal(mind.text("motion", 2), "walk");
  assert.deepEqual([mind.row(3), mind.row(4), mind.row(7)], [undefined, 0, undefined]);
});
