// Reads chunks: the blocks of a match recording, from a place where nothing needs to be known.

export const kPoseNumbers = 7; // x y z in metres, then w x y z of the rotation
const kMaxRobots = 64;

export interface Robot {
  side: 0 | 1;
  number: number;
  type: number;
  pose: Float32Array; // kPoseNumbers: world from torso
  joints: Float32Array; // degrees, in the order of the percepts
}

export interface Cycle {
  time: number; // game time, s
  mode: number;
  half: number;
  score: [number, number];
  teams: [string, string];
  ball: Float32Array; // kPoseNumbers
  robots: Robot[];
}

const kLength = 1e-4;
const kAngle = 1e-2;

export function jointCount(type: number): number {
  return type === 4 ? 24 : 22;
}

export class ByteReader {
  private at = 0;
  private readonly view: DataView;

  constructor(private readonly bytes: Uint8Array) {
    this.view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
  }

  get ended(): boolean {
    return this.at >= this.bytes.length;
  }

  byte(): number {
    const value = this.bytes[this.at++];
    if (value === undefined) throw new Error("The film is damaged: a chunk ends too early.");
    return value;
  }

  unsigned(): number {
    let value = 0;
    let factor = 1;
    for (;;) {
      const part = this.byte();
      value += (part & 0x7f) * factor;
      if (part < 0x80) return value;
      factor *= 128;
      if (factor > 2 ** 63) throw new Error("The film is damaged: a number is too long.");
    }
  }

  // Differences stay far below the 53 bits that a number holds exactly.
  signed(): number {
    const value = this.unsigned();
    return value % 2 === 0 ? value / 2 : -(value + 1) / 2;
  }

  float(): number {
    if (this.at + 4 > this.bytes.length) this.at = this.bytes.length;
    if (this.ended) this.byte();
    const value = this.view.getFloat32(this.at, true);
    this.at += 4;
    return value;
  }

  text(length: number): string {
    if (this.at + length > this.bytes.length) {
      throw new Error("The film is damaged: a name ends too early.");
    }
    const value = new TextDecoder().decode(this.bytes.subarray(this.at, this.at + length));
    this.at += length;
    return value;
  }
}

interface Roster {
  side: 0 | 1;
  number: number;
  type: number;
  last: Float64Array;
}

function toPose(numbers: Float64Array): Float32Array {
  const pose = new Float32Array(kPoseNumbers);
  let norm = 0;
  for (let i = 3; i < 7; ++i) norm += (numbers[i] as number) ** 2;
  norm = Math.sqrt(norm);
  for (let i = 0; i < 3; ++i) pose[i] = (numbers[i] as number) * kLength;
  for (let i = 3; i < 7; ++i) {
    pose[i] = norm > 0 ? (numbers[i] as number) / norm : i === 3 ? 1 : 0;
  }
  return pose;
}

function side(value: number): 0 | 1 {
  if (value !== 0 && value !== 1) throw new Error("The film is damaged: there is no such side.");
  return value;
}

// All cycles of a chunk.
export function readChunk(bytes: Uint8Array): Cycle[] {
  const reader = new ByteReader(bytes);
  const cycles: Cycle[] = [];
  const teams: [string, string] = ["", ""];
  const ball = new Float64Array(kPoseNumbers);
  let roster: Roster[] = [];

  const advance = (numbers: Float64Array): void => {
    for (let i = 0; i < numbers.length; ++i) {
      numbers[i] = (numbers[i] as number) + reader.signed();
    }
  };

  const readRoster = (): void => {
    const count = reader.unsigned();
    if (count > kMaxRobots) throw new Error("The film is damaged: there are too many robots.");
    roster = [];
    for (let i = 0; i < count; ++i) {
      const entry = { side: side(reader.byte()), number: reader.byte(), type: reader.byte() };
      if (entry.type > 4) throw new Error("The film is damaged: there is no such robot.");
      roster.push({ ...entry, last: new Float64Array(kPoseNumbers + jointCount(entry.type)) });
    }
  };

  const readRobot = (entry: Roster): Robot => {
    advance(entry.last);
    const joints = new Float32Array(entry.last.length - kPoseNumbers);
    for (let i = 0; i < joints.length; ++i) {
      joints[i] = (entry.last[kPoseNumbers + i] as number) * kAngle;
    }
    const { side, number, type } = entry;
    return { side, number, type, pose: toPose(entry.last), joints };
  };

  const readCycle = (): void => {
    const time = reader.float();
    const mode = reader.byte();
    const half = reader.byte();
    const score: [number, number] = [reader.unsigned(), reader.unsigned()];
    advance(ball);
    const robots = roster.map(readRobot);
    cycles.push({ time, mode, half, score, teams: [...teams], ball: toPose(ball), robots });
  };

  while (!reader.ended) {
    switch (String.fromCharCode(reader.byte())) {
      case "T": {
        const team = side(reader.byte());
        teams[team] = reader.text(reader.unsigned());
        break;
      }
      case "R":
        readRoster();
        break;
      case "C":
        readCycle();
        break;
      // The index tells of goals and fouls.
      case "G":
      case "F":
        for (let i = 0; i < 3; ++i) reader.byte();
        break;
      default:
        throw new Error("The film is damaged: a chunk holds an unknown block.");
    }
  }
  return cycles;
}

export async function inflate(packed: Uint8Array<ArrayBuffer>): Promise<Uint8Array<ArrayBuffer>> {
  const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream("deflate"));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}
