// The index of a film, as the viewer's server sends it or an exported page holds it.

export type Side = 0 | 1;

export interface Body {
  name: string;
  parent: number;
  position: [number, number, number];
  shape: "box" | "sphere" | "capsule";
  size: [number, number, number];
}

export interface Joint {
  name: string;
  child: number;
  parent: number;
  anchor: [number, number, number];
  axis: [number, number, number];
}

export interface RobotModel {
  bodies: Body[];
  joints: Joint[];
}

export interface Pitch {
  length: number;
  width: number;
  goalWidth: number;
  goalDepth: number;
  goalHeight: number;
  circle: number;
  penaltyLength: number;
  penaltyWidth: number;
  ballRadius: number;
}

export interface ChunkEntry {
  number: number;
  first: number;
  cycles: number;
  time: number;
}

export type MarkKind = "mode" | "goal" | "foul" | "fall" | "note";

export interface Mark {
  kind: MarkKind;
  cycle: number;
  side: number; // 0 left, 1 right, 2 nobody
  number: number;
  text: string;
}

export interface FilmIndex {
  version: number;
  title: string;
  cycleSeconds: number;
  chunkCycles: number;
  cycles: number;
  teams: [string, string];
  chunks: ChunkEntry[];
  marks: Mark[];
  playModes: string[];
  pitch: Pitch;
  robots: RobotModel[];
  minds: string[];
  live?: boolean;
  trainer?: boolean;
  connected?: boolean;
  status?: string;
}

// What a live server tells beside pictures.
export type News =
  | { news: "film"; film: FilmIndex }
  | { news: "chunk"; chunk: ChunkEntry }
  | { news: "mark"; mark: Mark }
  | {
      news: "status";
      connected: boolean;
      status: string;
      teams: [string, string];
      length: number;
      width: number;
    };

const kVersion = 1;

export function checkIndex(index: FilmIndex): FilmIndex {
  if (index.version !== kVersion) {
    throw new Error(`This film has version ${index.version}; the page knows ${kVersion}.`);
  }
  return index;
}
