// Work that waits until its element comes near the screen, and is done once.

const kNear = "600px";

// Returns a function that does the work at once, if it is still to do.
export function onceNear(element: Element, work: () => void): () => void {
  let done = false;
  const watcher = new IntersectionObserver(
    (entries) => {
      if (entries.some((entry) => entry.isIntersecting)) now();
    },
    { rootMargin: kNear },
  );
  const now = (): void => {
    watcher.disconnect();
    if (done) return;
    done = true;
    work();
  };
  watcher.observe(element);
  return now;
}
