// Which moment is shown, and how it moves on: a position in cycles, between them while it plays.

export const kSpeeds = [0.1, 0.25, 0.5, 1, 2, 4, 8, 16];

export interface Range {
  first: number;
  last: number;
}

export class Playback {
  position = 0;
  playing = false;
  speed = 1;
  following = false; // live: stays at the present

  constructor(
    private readonly range: () => Range,
    private readonly cycleSeconds: number,
  ) {}

  seek(position: number): void {
    const { first, last } = this.range();
    this.position = Math.min(Math.max(position, first), last);
  }

  step(cycles: number): void {
    this.playing = false;
    this.following = false;
    this.seek(Math.round(this.position) + cycles);
  }

  toggle(): void {
    const { first, last } = this.range();
    if (!this.playing && this.position >= last && !this.following) this.seek(first);
    this.playing = !this.playing;
    if (!this.playing) this.following = false;
  }

  faster(steps: number): void {
    const at = kSpeeds.indexOf(this.speed) + steps;
    this.speed = kSpeeds[Math.min(Math.max(at, 0), kSpeeds.length - 1)] ?? 1;
  }

  // Lets time pass; true if the moment has changed. `ready` tells whether a cycle is at hand: where
  // it is not, time waits.
  advance(seconds: number, ready: (cycle: number) => boolean): boolean {
    if (!this.playing) return false;
    const { last } = this.range();
    const before = this.position;
    if (this.following) {
      this.follow(seconds, last);
    } else {
      const next = Math.min(this.position + (seconds * this.speed) / this.cycleSeconds, last);
      if (ready(Math.floor(next)) && ready(Math.ceil(next))) this.position = next;
      if (this.position >= last) this.playing = false;
    }
    return this.position !== before;
  }

  // A little behind the newest picture, so that there is always one to move towards; what comes in
  // bursts is smoothed, and who is far behind jumps.
  private follow(seconds: number, last: number): void {
    const kBehind = 2;
    const kFarBehind = 25;
    const wanted = Math.max(last - kBehind, this.range().first);
    if (wanted - this.position > kFarBehind || this.position > last) {
      this.position = wanted;
      return;
    }
    const pull = 1 + 0.15 * (wanted - this.position);
    const next = this.position + (Math.max(pull, 0) * seconds) / this.cycleSeconds;
    this.position = Math.min(Math.max(next, this.position), last);
  }
}

export function clockText(seconds: number): string {
  const whole = Math.max(0, Math.floor(seconds + 1e-4));
  return `${Math.floor(whole / 60)}:${String(whole % 60).padStart(2, "0")}`;
}

// The time within a play mode's cycle with its hundredths, for the moment that is shown.
export function exactTime(seconds: number): string {
  return `${seconds.toFixed(2)} s`;
}
