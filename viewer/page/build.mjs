// Builds the page into one HTML file, or with --tests the tests to build/tests/.
//   node build.mjs FILE | node build.mjs --tests DIRECTORY
import { build } from "esbuild";
import { readFileSync, readdirSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { fileURLToPath } from "node:url";

const here = dirname(fileURLToPath(import.meta.url));
const [first, second] = process.argv.slice(2);

async function bundle(options) {
  return build({
    absWorkingDir: here,
    bundle: true,
    format: "esm",
    logLevel: "warning",
    target: "es2022",
    ...options,
  });
}

async function buildTests(directory) {
  const tests = readdirSync(join(here, "tests")).filter((name) => name.endsWith(".test.ts"));
  await bundle({
    entryPoints: tests.map((name) => join("tests", name)),
    outdir: directory,
    outExtension: { ".js": ".mjs" },
    platform: "node",
    external: ["playwright-core"],
    sourcemap: "inline",
  });
}

async function buildPage(file) {
  const script = await bundle({
    entryPoints: ["src/Main.ts"],
    format: "iife",
    legalComments: "inline",
    minify: true,
    write: false,
  });
  const style = await bundle({ entryPoints: ["src/page.css"], minify: true, write: false });
  // Nothing in the texts may end the element that they stand in.
  const code = script.outputFiles[0].text.replaceAll("</script", "<\\/script");
  const html = readFileSync(join(here, "src/page.html"), "utf8")
    .replace("/* style */", () => style.outputFiles[0].text)
    .replace("/* script */", () => code);
  writeFileSync(file, html);
}

await (first === "--tests" ? buildTests(second) : buildPage(first));
