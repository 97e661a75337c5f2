// Stands for packages that are never called (see build.mjs).
export default {};
