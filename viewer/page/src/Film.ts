// A film to be played: finds the cycle for any moment, unpacking chunks as they are needed.

import { inflate, readChunk, type Cycle } from "./Chunk.ts";
import type { ChunkEntry, FilmIndex, Mark } from "./Index.ts";

// Where the packed bytes of chunks and minds come from.
export interface Source {
  chunk(number: number): Promise<Uint8Array<ArrayBuffer>>;
  mind(player: string): Promise<Uint8Array<ArrayBuffer>>;
  keep?(number: number): void; // fetches a chunk in advance, for when the source has gone
}

const kKeptChunks = 24; // unpacked, two minutes

export class Film {
  private readonly unpacked = new Map<number, Cycle[]>(); // the one used last comes last
  private readonly awaited = new Map<number, Promise<void>>();
  private readonly recent = new Map<number, Cycle>(); // live: cycles that are in no chunk yet
  readonly failures: string[] = [];
  onChange: () => void = () => {};

  constructor(
    readonly index: FilmIndex,
    private readonly source: Source,
  ) {}

  get first(): number {
    return this.index.chunks[0]?.first ?? 0;
  }
  get last(): number {
    return Math.max(this.index.cycles - 1, 0);
  }
  get marks(): Mark[] {
    return this.index.marks;
  }
  get cycleSeconds(): number {
    return this.index.cycleSeconds;
  }

  // The chunk with this cycle; undefined if it is in none.
  chunkOf(cycle: number): ChunkEntry | undefined {
    const { chunks } = this.index;
    let low = 0;
    let high = chunks.length - 1;
    while (low <= high) {
      const middle = (low + high) >> 1;
      const chunk = chunks[middle] as ChunkEntry;
      if (cycle < chunk.first) high = middle - 1;
      else if (cycle >= chunk.first + chunk.cycles) low = middle + 1;
      else return chunk;
    }
    return undefined;
  }

  // The cycle, if it is at hand; else it is sent for, and onChange tells when it has come.
  at(cycle: number): Cycle | undefined {
    const fresh = this.recent.get(cycle);
    if (fresh) return fresh;
    const chunk = this.chunkOf(cycle);
    if (!chunk) return undefined;
    const cycles = this.unpacked.get(chunk.number);
    if (!cycles) {
      void this.fetch(chunk.number);
      return undefined;
    }
    this.unpacked.delete(chunk.number);
    this.unpacked.set(chunk.number, cycles);
    return cycles[cycle - chunk.first];
  }

  // Where a film opens: a match begins with an empty pitch that robots come to, so at the first
  // cycle with as many of them as the first chunk ends with; undefined if it cannot be had.
  async opening(): Promise<number | undefined> {
    const chunk = this.chunkOf(this.first);
    if (!chunk) return undefined;
    await this.fetch(chunk.number);
    const cycles = this.unpacked.get(chunk.number);
    const all = cycles?.at(-1)?.robots.length;
    return cycles && chunk.first + cycles.findIndex(({ robots }) => robots.length === all);
  }

  // Sends for what comes next, so that playing does not wait.
  prefetch(cycle: number): void {
    const next = this.chunkOf(cycle);
    if (next && !this.unpacked.has(next.number)) void this.fetch(next.number);
  }

  private fetch(number: number): Promise<void> {
    if (this.unpacked.has(number)) return Promise.resolve();
    let coming = this.awaited.get(number);
    if (!coming) this.awaited.set(number, (coming = this.unpack(number)));
    return coming;
  }

  private async unpack(number: number): Promise<void> {
    try {
      this.unpacked.set(number, readChunk(await inflate(await this.source.chunk(number))));
      for (const oldest of this.unpacked.keys()) {
        if (this.unpacked.size <= kKeptChunks) break;
        this.unpacked.delete(oldest);
      }
      this.awaited.delete(number);
    } catch (error) {
      // It stays awaited: a chunk that cannot be had is not asked for again.
      this.failures.push(error instanceof Error ? error.message : String(error));
    }
    this.onChange();
  }

  mind(player: string): Promise<Uint8Array<ArrayBuffer>> {
    return this.source.mind(player);
  }

  // Live: a cycle as it happens.
  addPicture(cycle: number, blocks: Uint8Array): void {
    const [shown] = readChunk(blocks);
    if (!shown) return;
    this.recent.set(cycle, shown);
    this.index.cycles = Math.max(this.index.cycles, cycle + 1);
  }

  addChunk(chunk: ChunkEntry): void {
    if (this.index.chunks.some((known) => known.number === chunk.number)) return;
    this.index.chunks.push(chunk);
    this.source.keep?.(chunk.number);
    // The last picture stays: play goes on from it to the next.
    for (const cycle of this.recent.keys()) {
      if (cycle < chunk.first + chunk.cycles - this.index.chunkCycles) this.recent.delete(cycle);
    }
  }

  addMark(mark: Mark): void {
    this.index.marks.push(mark);
  }
}

export function fromBase64(text: string): Uint8Array<ArrayBuffer> {
  const binary = atob(text.trim());
  const bytes = new Uint8Array(binary.length);
  for (let i = 0; i < binary.length; ++i) bytes[i] = binary.charCodeAt(i);
  return bytes;
}

// The film inside an exported page.
export class PageSource implements Source {
  static index(): FilmIndex | undefined {
    const text = document.getElementById("film")?.textContent;
    return text ? (JSON.parse(text) as FilmIndex) : undefined;
  }
  chunk(number: number): Promise<Uint8Array<ArrayBuffer>> {
    return this.content(`chunk/${number}`);
  }
  mind(player: string): Promise<Uint8Array<ArrayBuffer>> {
    return this.content(`mind/${player}`);
  }
  private async content(id: string): Promise<Uint8Array<ArrayBuffer>> {
    const text = document.getElementById(id)?.textContent;
    if (!text) throw new Error("A part of this page is missing.");
    return fromBase64(text);
  }
}

const kMostKept = 720; // packed chunks, an hour, some 60 MB

// Another source, of which a live page keeps what it has seen: a match that is over can still be looked
// at when its viewer has ended.
export class KeptSource implements Source {
  private readonly kept = new Map<number, Promise<Uint8Array<ArrayBuffer>>>();

  constructor(private readonly inner: Source) {}

  chunk(number: number): Promise<Uint8Array<ArrayBuffer>> {
    return this.kept.get(number) ?? this.inner.chunk(number);
  }
  keep(number: number): void {
    const coming = this.inner.chunk(number);
    // Who asks for it is told; until then it is as if it had not been kept.
    coming.catch(() => this.kept.delete(number));
    this.kept.set(number, coming);
    this.kept.delete(number - kMostKept);
  }
  mind(player: string): Promise<Uint8Array<ArrayBuffer>> {
    return this.inner.mind(player);
  }
}

const kAskAgain = 400; // ms

// The film of the server that the page came from.
export class ServerSource implements Source {
  static async index(): Promise<FilmIndex> {
    return (await ServerSource.get("film")).json() as Promise<FilmIndex>;
  }
  async chunk(number: number): Promise<Uint8Array<ArrayBuffer>> {
    return new Uint8Array(await (await ServerSource.get(`chunk/${number}`)).arrayBuffer());
  }
  // Bringing a mind back takes a while.
  async mind(player: string): Promise<Uint8Array<ArrayBuffer>> {
    for (;;) {
      const answer = await ServerSource.get(`mind/${player}`);
      if (answer.status === 200) return new Uint8Array(await answer.arrayBuffer());
      await new Promise((resolve) => setTimeout(resolve, kAskAgain));
    }
  }
  private static async get(path: string): Promise<Response> {
    let answer: Response;
    try {
      answer = await fetch(path);
    } catch {
      throw new Error("The viewer's server does not answer.");
    }
    if (!answer.ok) throw new Error((await answer.text()).trim() || answer.statusText);
    return answer;
  }
}
