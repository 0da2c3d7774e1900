import { dirname } from "node:path";
import { fileURLToPath } from "node:url";
import js from "@eslint/js";
import tseslint from "typescript-eslint";

// What turns text into markup, code or a style. Names come from strangers' files.
const neverProperties = ["innerHTML", "outerHTML", "srcdoc", "cssText"];
const neverCalls = ["insertAdjacentHTML", "write", "writeln", "createContextualFragment",
  "parseFromString", "setHTMLUnsafe"];
const names = (list) => `/^(${list.join("|")})$/`;

export default tseslint.config(
  { ignores: ["build/", "node_modules/"] },
  js.configs.recommended,
  ...tseslint.configs.strictTypeChecked,
  ...tseslint.configs.stylisticTypeChecked,
  {
    languageOptions: {
      parserOptions: { projectService: { allowDefaultProject: ["*.mjs"] }, tsconfigRootDir: dirname(fileURLToPath(import.meta.url)) },
    },
    rules: {
      "no-eval": "error",
      "no-new-func": "error",
      "@typescript-eslint/no-implied-eval": "error",
      "no-script-url": "error",
      "no-restricted-properties": "off",
      "@typescript-eslint/restrict-template-expressions": ["error", { allowNumber: true }],
      "@typescript-eslint/no-non-null-assertion": "error",
      "@typescript-eslint/prefer-for-of": "off",
      "@typescript-eslint/explicit-function-return-type": "off",
      "no-restricted-syntax": [
        "error",
        { selector: `MemberExpression[property.name=${names(neverProperties)}]`,
          message: "Names must not become markup." },
        { selector: `MemberExpression[property.value=${names(neverProperties)}]`,
          message: "Names must not become markup." },
        { selector: `CallExpression[callee.property.name=${names(neverCalls)}]`,
          message: "Names must not become markup." },
        { selector: "MemberExpression[property.name=/^on[a-z]+$/]",
          message: "Use addEventListener." },
      ],
    },
  },
  // Node's own runner waits for its tests itself.
  { files: ["tests/**"], rules: { "@typescript-eslint/no-floating-promises": "off",
    "@typescript-eslint/no-non-null-assertion": "off" } },
  { files: ["*.mjs"], ...tseslint.configs.disableTypeChecked,
    languageOptions: { globals: { process: "readonly", console: "readonly", Buffer: "readonly" } } },
);
