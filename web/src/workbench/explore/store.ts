// A record that parts of the page watch.

export type Listener<T> = (now: T, before: T) => void;

export class Store<T extends object> {
  private readonly listeners: Listener<T>[] = [];

  constructor(private current: T) {}

  get now(): T {
    return this.current;
  }

  change(patch: Partial<T>): void {
    const before = this.current;
    this.current = { ...before, ...patch };
    for (const listener of this.listeners) listener(this.current, before);
  }

  watch(listener: Listener<T>): void {
    this.listeners.push(listener);
  }

  // Calls when one of the members is another one than before.
  on(members: readonly (keyof T)[], work: (now: T) => void): void {
    this.watch((now, before) => {
      if (members.some((member) => now[member] !== before[member])) work(now);
    });
  }
}
