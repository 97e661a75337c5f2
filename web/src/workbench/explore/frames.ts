// Work done at most once per picture of the screen.

export class OncePerFrame {
  private asked = 0;

  constructor(private readonly work: () => void) {}

  ask(): void {
    if (this.asked !== 0) return;
    this.asked = requestAnimationFrame(() => {
      this.asked = 0;
      this.work();
    });
  }
}
