// What a player sensed, believed and decided, cycle by cycle, as the tool `recall` has written it.

import { ByteReader, inflate } from "./Chunk.ts";

export interface ColumnEntry {
  name: string;
  label: string;
  unit: string;
  group: string;
  scale: number;
  texts?: string[]; // values are indices into it
}

interface Header {
  version: number;
  player: string;
  frames: number;
  firstCycle: number; // of the film, that of the first row
  verdict: string; // whether the answers were the recorded ones
  same: boolean;
  columns: ColumnEntry[];
}

export interface Column extends ColumnEntry {
  values: Float32Array; // NaN: absent
}

const kVersion = 1;
const kAbsent = -(2 ** 31);

export class Mind {
  private readonly byName: Map<string, Column>;

  constructor(
    readonly header: Header,
    readonly columns: Column[],
  ) {
    this.byName = new Map(columns.map((column) => [column.name, column]));
  }

  static async unpack(packed: Uint8Array<ArrayBuffer>): Promise<Mind> {
    return Mind.read(await inflate(packed));
  }

  static read(bytes: Uint8Array): Mind {
    const reader = new ByteReader(bytes);
    const header = JSON.parse(reader.text(reader.unsigned())) as Header;
    if (header.version !== kVersion) throw new Error("These beliefs are of an unknown version.");
    const columns = header.columns.map((entry) => {
      const values = new Float32Array(header.frames);
      let stored = 0;
      for (let i = 0; i < values.length; ++i) {
        stored += reader.signed();
        values[i] = stored === kAbsent ? Number.NaN : stored * entry.scale;
      }
      return { ...entry, values };
    });
    return new Mind(header, columns);
  }

  // The row of what was believed at that cycle of the film; undefined before and after.
  row(cycle: number): number | undefined {
    const row = Math.round(cycle) - this.header.firstCycle;
    return row >= 0 && row < this.header.frames ? row : undefined;
  }

  column(name: string): Column | undefined {
    return this.byName.get(name);
  }

  value(name: string, row: number): number {
    return this.byName.get(name)?.values[row] ?? Number.NaN;
  }

  text(name: string, row: number): string {
    const column = this.byName.get(name);
    const value = column?.values[row];
    return column?.texts?.[value ?? Number.NaN] ?? "";
  }
}
