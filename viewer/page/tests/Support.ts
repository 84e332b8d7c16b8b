// What the browser's tests share: programs of this build, agents without brains, and the browser.

import { spawn, type ChildProcess } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { connect, createServer, type Server, type Socket } from "node:net";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { gunzipSync } from "node:zlib";

import { chromium, type Browser, type BrowserContext, type Page } from "playwright-core";

function required(name: string): string {
  const value = process.env[name];
  if (!value) throw new Error(`${name} is not set; scripts/test sets it`);
  return value;
}
export const kBin = required("QUOLNARIS_BIN_DIR");
export const kSource = required("QUOLNARIS_SOURCE_DIR");

export const sleep = (milliseconds: number): Promise<void> => new Promise((resolve) => setTimeout(resolve, milliseconds));

export class TempDirectory {
  readonly path = mkdtempSync(join(tmpdir(), "page-"));
  file(name: string): string {
    return join(this.path, name);
  }
  remove(): void {
    rmSync(this.path, { recursive: true, force: true });
  }
}

// A program whose output is kept.
export class Program {
  static running: Program[] = [];
  output = "";
  private readonly child: ChildProcess;
  readonly ended: Promise<number>;

  constructor(name: string, options: string[], cwd = process.cwd()) {
    this.child = spawn(join(kBin, name), options, { cwd });
    this.child.stdout?.on("data", (data: Buffer) => (this.output += data.toString()));
    this.child.stderr?.on("data", (data: Buffer) => (this.output += data.toString()));
    this.ended = new Promise((resolve) => this.child.on("close", (code) => resolve(code ?? -1)));
    Program.running.push(this);
    void this.ended.then(() => (Program.running = Program.running.filter((other) => other !== this)));
  }
  // The first group of the pattern, once it has been written.
  async told(pattern: RegExp): Promise<string> {
    for (let i = 0; i < 600; ++i) {
      const found = pattern.exec(this.output);
      if (found) return found[1] ?? "";
      await sleep(50);
    }
    throw new Error(`it has not said ${pattern}: ${this.output}`);
  }
  async stop(signal: NodeJS.Signals = "SIGTERM"): Promise<void> {
    this.child.kill(signal);
    await this.ended;
  }
}

function framed(text: string): Buffer {
  const frame = Buffer.alloc(4 + text.length);
  frame.writeUInt32BE(text.length);
  frame.write(text, 4, "latin1");
  return frame;
}

// A robot that joins, stands where it was put and nods.
export class Agent {
  private readonly socket: Socket;
  private buffer = Buffer.alloc(0);
  private frames = 0;

  constructor(port: number, team: string, number: number, type: number, place: string) {
    const greetings = [`(init (unum ${number})(teamname ${team}))`, `(beam ${place})`];
    this.socket = connect(port, "127.0.0.1", () => this.send(`(scene rsg/agent/nao/nao_hetero.rsg ${type})(syn)`));
    this.socket.on("error", () => undefined);
    this.socket.on("data", (data) => {
      this.buffer = Buffer.concat([this.buffer, data]);
      while (this.buffer.length >= 4 && this.buffer.length >= 4 + this.buffer.readUInt32BE(0)) {
        this.buffer = this.buffer.subarray(4 + this.buffer.readUInt32BE(0));
        const nod = Math.floor(this.frames / 25) % 2 ? 0.5 : -0.5;
        this.send(`${greetings[this.frames++] ?? `(he1 ${nod})(rae1 ${nod})`}(syn)`);
      }
    });
  }
  private send(text: string): void {
    this.socket.write(framed(text));
  }
  leave(): void {
    this.socket.destroy();
  }
}

export class Arena {
  agents: Agent[] = [];
  private constructor(
    readonly program: Program,
    readonly agentPort: number,
    readonly monitorPort: number,
  ) {}
  static async start(options: string[], monitorPort = 0): Promise<Arena> {
    const program = new Program("arena", ["--agent-port", "0", "--monitor-port", String(monitorPort), ...options]);
    const agents = Number(await program.told(/agents at port (\d+)/));
    return new Arena(program, agents, Number(await program.told(/monitors at port (\d+)/)));
  }
  join(team: string, number: number, type: number, place: string): void {
    this.agents.push(new Agent(this.agentPort, team, number, type, place));
  }
  async stop(): Promise<void> {
    for (const agent of this.agents) agent.leave();
    await this.program.stop();
  }
}

// Plays recorded monitor messages to whoever connects.
export class Replayer {
  private readonly server: Server;
  private constructor(server: Server) {
    this.server = server;
  }
  static async start(file: string, change: (messages: Buffer[]) => Buffer[] = (same) => same): Promise<Replayer> {
    const bytes = gunzipSync(readFileSync(file));
    const messages: Buffer[] = [];
    for (let at = 0; at < bytes.length; ) {
      const end = at + 4 + bytes.readUInt32BE(at);
      messages.push(bytes.subarray(at, end));
      at = end;
    }
    const sent = change(messages);
    const server = createServer((socket) => {
      let next = 0;
      const timer = setInterval(() => {
        const message = sent[next++];
        if (message) socket.write(message);
        else clearInterval(timer);
      }, 20);
      socket.on("error", () => undefined);
      socket.on("close", () => clearInterval(timer));
    });
    await new Promise<void>((resolve) => server.listen(0, "127.0.0.1", resolve));
    return new Replayer(server);
  }
  get port(): number {
    const address = this.server.address();
    return typeof address === "object" && address ? address.port : 0;
  }
  stop(): void {
    this.server.close();
    this.server.unref();
  }
}

export async function startViewer(options: string[]): Promise<{ program: Program; url: string }> {
  const program = new Program("viewer", ["--port", "0", ...options], kSource);
  return { program, url: await program.told(/(http:\S+)/) };
}

const kFlags = [
  "--headless", "--no-sandbox", "--disable-gpu", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
  "--disable-quic", "--no-first-run", "--disable-background-networking", "--disable-component-update", "--disable-sync",
];

export class TestBrowser {
  private constructor(
    private readonly context: BrowserContext,
    private readonly home: TempDirectory,
  ) {}
  static async start(): Promise<TestBrowser> {
    const home = new TempDirectory();
    const executablePath = process.env.CHROMIUM ?? "/usr/bin/chromium";
    const context = await chromium.launchPersistentContext(home.path, {
      executablePath, args: kFlags, viewport: { width: 1280, height: 720 }, colorScheme: "dark",
    });
    return new TestBrowser(context, home);
  }
  // A page whose script errors fail the test.
  async page(url: string, errors: string[] = []): Promise<Page> {
    const page = await this.context.newPage();
    page.on("pageerror", (error) => errors.push(error.message));
    await page.goto(url);
    return page;
  }
  // For all its pages, from here on.
  async offline(): Promise<void> {
    await this.context.setOffline(true);
  }
  get browser(): Browser | null {
    return this.context.browser();
  }
  async stop(): Promise<void> {
    await this.context.close();
    this.home.remove();
  }
}

// What the page tells of itself; see App.exposeState.
export interface ViewerState {
  position(): number;
  playing(): boolean;
  following(): boolean;
  cycles(): number;
  camera(): string;
  chosen(): string;
  pictures(): number;
  marks(): { kind: string; cycle: number; text: string }[];
  shown(): { time: number; mode: number; score: [number, number]; ball: Float32Array; robots: { side: number; number: number; type: number; pose: Float32Array; joints: Float32Array }[] } | undefined;
  belief(): { self: { pose: Float32Array; joints: Float32Array } } | undefined;
  mindRow(): number | undefined;
  project(x: number, y: number, z: number): [number, number, number] | undefined;
  seek(cycle: number): void;
}
declare global {
  interface Window {
    viewer: ViewerState;
  }
}

export async function shows(page: Page, what: () => boolean, timeout = 20_000): Promise<void> {
  await page.waitForFunction(what, undefined, { timeout });
}

export const opened = (page: Page): Promise<void> =>
  shows(page, () => window.viewer?.shown() !== undefined && window.viewer.pictures() > 0);
