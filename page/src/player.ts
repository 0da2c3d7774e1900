import type { Replay } from "./replay.ts";
import type { Settings } from "./settings.ts";

/** How long a picture may spend on walking, in milliseconds. */
const WALK_MS = 10;
/** The reached speed is measured over so many milliseconds. */
const MEASURED_MS = 600;
/** Slower than that, agents are seen on their way. */
const GLIDE_BELOW = 12;
/** After a pause of the browser's, such as of a page out of sight, no more than this is made up for. */
const LONGEST_TICK_MS = 250;

/** Moves the replay along the time that passes, or to a step that was asked for. */
export class Player {
  isPlaying = false;
  /** Steps a second that were reached of late; 0 where nobody knows. */
  reached = 0;
  /** How far agents are on the way of the latest step. */
  progress = 1;
  private clock: number;
  private sought: number | null = null;
  private before = 0;
  private measuredFrom = 0;
  private made = 0;

  constructor(
    private readonly replay: Replay,
    private readonly settings: Settings,
    private readonly glides: () => boolean,
  ) {
    this.clock = replay.step;
  }

  get isSeeking(): boolean {
    return this.sought !== null;
  }

  /** The step that is shown, or on the way to being so. */
  get aim(): number {
    return this.sought ?? this.replay.step;
  }

  play(now: number): void {
    if (this.replay.step >= this.replay.course.steps) this.seek(0);
    this.isPlaying = true;
    this.before = now;
    this.clock = this.aim;
    this.restartMeasure(now);
  }

  pause(): void {
    this.isPlaying = false;
    this.progress = 1;
  }

  seek(step: number): void {
    this.sought = Math.max(0, Math.min(this.replay.course.steps, step));
    this.clock = this.sought;
    this.progress = 1;
  }

  restartMeasure(now: number): void {
    this.measuredFrom = now;
    this.made = 0;
    this.reached = 0;
  }

  /** One picture's work; tells whether another will be needed. */
  tick(now: number): boolean {
    if (this.sought !== null) {
      if (this.replay.seek(this.sought, performance.now() + WALK_MS)) this.sought = null;
      this.before = now;
    } else if (this.isPlaying) {
      this.walk(now);
    }
    return this.isPlaying || this.isSeeking;
  }

  private walk(now: number): void {
    const { replay, settings } = this;
    const last = replay.course.steps;
    const passed = Math.max(0, Math.min(LONGEST_TICK_MS, now - this.before)) / 1000;
    this.before = now;
    this.clock = Math.min(last, this.clock + passed * settings.speed);
    const target = Math.ceil(this.clock);
    const from = replay.step;
    const isThere = replay.seek(target, performance.now() + WALK_MS);
    this.made += replay.step - from;
    this.measure(now);
    // Time that could not be used is not made up for.
    if (!isThere) this.clock = replay.step;
    const isSlow = settings.speed <= GLIDE_BELOW && this.glides();
    this.progress = isSlow ? 1 - (target - this.clock) : 1;
    if (this.clock < last) return;
    if (settings.loop && last > 0) this.seek(0);
    else this.pause();
  }

  private measure(now: number): void {
    const time = now - this.measuredFrom;
    if (time < MEASURED_MS) return;
    this.reached = (1000 * this.made) / time;
    this.measuredFrom = now;
    this.made = 0;
  }
}
