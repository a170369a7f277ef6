// Cuts the speech engine's data package down to what English needs: the
// package holds every language (24 MB), the game speaks English only.
// Usage: node espeak_data.mjs ENGINE_PACKAGE_DIR OUTPUT_DIR
import { readFileSync, writeFileSync, mkdirSync } from 'node:fs';
import { join } from 'node:path';

const [engineDir, outDir] = process.argv.slice(2);
if (!engineDir || !outDir) {
  console.error('usage: node espeak_data.mjs ENGINE_PACKAGE_DIR OUTPUT_DIR');
  process.exit(2);
}

const root = '/usr/share/espeak-ng-data/';
// The phoneme tables every voice shares, the English dictionary, the
// English accents and the voice variants (a few hundred bytes each).
const kept = (name) =>
  ['phontab', 'phonindex', 'phondata', 'intonations', 'en_dict'].includes(name) ||
  name.startsWith('lang/gmw/en') ||
  name.startsWith('voices/!v/');

const script = readFileSync(join(engineDir, 'espeak-ng.js'), 'utf8');
const data = readFileSync(join(engineDir, 'espeak-ng.data'));
const found = /loadPackage\(\{files:(\[[^\]]*\]),remote_package_size:(\d+)\}\)/.exec(script);
if (!found || Number(found[2]) !== data.length) {
  console.error('espeak_data: the engine package is not laid out as expected');
  process.exit(1);
}
const files = new Function(`return ${found[1]}`)();

const pieces = [];
const entries = [];
let offset = 0;
for (const file of files) {
  if (!file.filename.startsWith(root) || !kept(file.filename.slice(root.length))) continue;
  const bytes = data.subarray(file.start, file.end);
  entries.push({ ...file, start: offset, end: offset + bytes.length });
  pieces.push(bytes);
  offset += bytes.length;
}
for (const name of ['phontab', 'en_dict', 'lang/gmw/en-US']) {
  if (!entries.some((e) => e.filename === root + name)) {
    console.error(`espeak_data: ${name} is missing from the engine package`);
    process.exit(1);
  }
}

const metadata = `loadPackage({files:${JSON.stringify(entries)},remote_package_size:${offset}})`;
mkdirSync(outDir, { recursive: true });
writeFileSync(join(outDir, 'espeak-ng.data'), Buffer.concat(pieces));
writeFileSync(join(outDir, 'espeak-ng.js'), script.replace(found[0], () => metadata));
console.log(`espeak_data: ${entries.length} of ${files.length} files, ${offset} bytes`);
