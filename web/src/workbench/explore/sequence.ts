// Numbers of requests for maps: the program gives up a request when one with a larger number comes.
let last = 0;

export function nextSequence(): number {
  last += 1;
  return last;
}
