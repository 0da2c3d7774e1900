/** What agents remember at first, and to whom they tell it. */
export interface Memories {
  /** How many slots each agent's ring has. */
  readonly sizes: Float64Array;
  /** For each agent those to whom it tells, in this order; null where nobody tells anything. */
  readonly listeners: readonly Uint32Array[] | null;
  /** How each ring is at the beginning; null for one that is empty. */
  readonly begun: readonly (SavedRing | null)[];
}

export interface SavedRing {
  readonly current: number;
  readonly last: number;
  readonly transfer: number;
  /** A vertex plus 1, or 0 for an empty slot. */
  readonly slots: ArrayLike<number>;
}

/** The latest visits of one agent. Slots are made as they are first used, for a ring may be huge. */
class Ring {
  current = 0;
  last = 0;
  transfer = 0;
  slots: number[] = [];
  private readonly held = new Map<number, number>();

  constructor(readonly size: number) {}

  load(saved: SavedRing): void {
    this.current = saved.current;
    this.last = saved.last;
    this.transfer = saved.transfer;
    this.slots = Array.from(saved.slots);
    this.held.clear();
    for (const slot of this.slots) if (slot > 0) this.count(slot, 1);
  }

  next(place: number): number {
    return place + 1 === this.size ? 0 : place + 1;
  }

  has(vertex: number): boolean {
    return this.held.has(vertex + 1);
  }

  at(place: number): number {
    return this.slots[place] ?? 0;
  }

  /** Over what stands in the current slot. */
  put(vertex: number): void {
    const old = this.at(this.current);
    if (old > 0) this.count(old, -1);
    while (this.slots.length <= this.current) this.slots.push(0);
    this.slots[this.current] = vertex + 1;
    this.count(vertex + 1, 1);
  }

  /** From the oldest entry on. */
  entries(): number[] {
    const after = this.current + 1;
    const ordered = [...this.slots.slice(after), ...this.slots.slice(0, after)];
    return ordered.filter((slot) => slot > 0).map((slot) => slot - 1);
  }

  private count(slot: number, by: number): void {
    const count = (this.held.get(slot) ?? 0) + by;
    if (count > 0) this.held.set(slot, count);
    else this.held.delete(slot);
  }
}

/** What all agents remember, as their walk goes on. */
export class Rings {
  private readonly rings: Ring[];

  constructor(private readonly memories: Memories) {
    this.rings = Array.from(memories.sizes, (size) => new Ring(size));
    memories.begun.forEach((saved, agent) => {
      if (saved) this.rings[agent].load(saved);
    });
  }

  /** From the oldest entry on; a vertex that stands there several times that often. */
  of(agent: number): number[] {
    return this.rings[agent].entries();
  }

  remember(agent: number, vertex: number): void {
    const ring = this.rings[agent];
    ring.current = ring.next(ring.current);
    if (this.memories.listeners) {
      ring.last = ring.current;
      if (ring.current === ring.transfer) ring.transfer = ring.next(ring.transfer);
    }
    ring.put(vertex);
  }

  /** What follows a step: agents tell in turn. */
  share(): void {
    this.memories.listeners?.forEach((listeners, agent) => {
      this.tell(this.rings[agent], listeners);
    });
  }

  private tell(ring: Ring, listeners: Uint32Array): void {
    // Each round goes on by a slot, so that none needs more than the ring has.
    for (;;) {
      const told = ring.at(ring.transfer) - 1;
      let isNew = false;
      if (told >= 0) {
        for (const listener of listeners) isNew = receive(this.rings[listener], told) || isNew;
      }
      if (ring.transfer === ring.last) return;
      ring.transfer = ring.next(ring.transfer);
      if (isNew) return;
    }
  }

  /** All of it in numbers. */
  save(): number[] {
    return this.rings.flatMap((ring) => [
      ring.current,
      ring.last,
      ring.transfer,
      ring.slots.length,
      ...ring.slots,
    ]);
  }

  restore(saved: ArrayLike<number>, from: number): void {
    let at = from;
    for (const ring of this.rings) {
      const slots = Array.from({ length: saved[at + 3] }, (_, i) => saved[at + 4 + i]);
      ring.load({ current: saved[at], last: saved[at + 1], transfer: saved[at + 2], slots });
      at += 4 + slots.length;
    }
  }
}

/** Whether the ring did not have it. */
function receive(ring: Ring, vertex: number): boolean {
  if (ring.has(vertex)) return false;
  ring.current = ring.next(ring.current);
  if (ring.current === ring.transfer) ring.transfer = ring.next(ring.transfer);
  if (ring.current === ring.last) ring.last = ring.next(ring.last);
  ring.put(vertex);
  return true;
}
