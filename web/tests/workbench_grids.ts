// Grids that tests share.

export const kIdentity = [
  [1, 0, 0, 0],
  [0, 1, 0, 0],
  [0, 0, 1, 0],
  [0, 0, 0, 1],
] as const;

// Turned, with its first axis running to the left and axes in another order.
export const kSlanted = [
  [-2.9, 0.3, 0.1, 80],
  [0.2, 0.4, 3.1, -100],
  [0.1, 2.8, -0.3, -60],
  [0, 0, 0, 1],
] as const;
