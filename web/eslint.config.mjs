import tseslint from "typescript-eslint";

export default tseslint.config(
  { ignores: ["build", "node_modules"] },
  {
    files: ["src/**/*.ts", "tests/**/*.ts"],
    extends: [tseslint.configs.strictTypeChecked, tseslint.configs.stylisticTypeChecked],
    languageOptions: {
      parserOptions: { projectService: true, tsconfigRootDir: new URL(".", import.meta.url).pathname },
    },
    rules: {
      "max-lines": ["error", 200],
      "max-lines-per-function": ["error", 40],
      "max-len": ["error", 110],
      "no-restricted-properties": [
        "error",
        ...["innerHTML", "outerHTML", "insertAdjacentHTML"].map((property) => ({
          property,
          message: "Names of users' files are text: use textContent.",
        })),
      ],
      "@typescript-eslint/explicit-function-return-type": ["error", { allowExpressions: true }],
      "@typescript-eslint/restrict-template-expressions": ["error", { allowNumber: true }],
      "@typescript-eslint/no-unused-vars": "error",
      eqeqeq: "error",
    },
  },
  {
    // node:test's describe and it return promises that the runner awaits.
    files: ["tests/**/*.ts"],
    rules: { "@typescript-eslint/no-floating-promises": "off", "max-lines-per-function": "off" },
  },
);
