// Figures of the browser build, from the site `make web` built, played in
// headless Chromium on loopback: median, min and max of one run.
//   node bench/web_bench.mjs [SITE_DIR]    (default build-web/site)
import { readFileSync } from 'node:fs';
import { resolve } from 'node:path';
import { gzipSync } from 'node:zlib';
import { GamePage, launchBrowser, serveSite } from '../tests/web/browser.mjs';

const siteDir = resolve(process.argv[2] ?? 'build-web/site');
const kLoads = 5;
const kKeys = 30;
const sleep = (ms) => new Promise((done) => setTimeout(done, ms));

function figures(name, values, unit = 'ms') {
  const sorted = [...values].sort((a, b) => a - b);
  const middle = sorted.length / 2;
  const median = sorted.length % 2 ? sorted[Math.floor(middle)] : (sorted[middle - 1] + sorted[middle]) / 2;
  const show = (value) => value.toFixed(1);
  console.log(`${name}: median ${show(median)} ${unit}, min ${show(sorted[0])}, max ` +
    `${show(sorted.at(-1))} (${values.length} runs)`);
}

// From the navigation to the mixer's first frame with sound, the start key
// pressed as soon as the page asks for it.
async function firstSound(game, url) {
  await game.load(url);
  await game.press(32);
  await game.page.waitForFunction(() => window.quorble.sound.firstSoundAt, { polling: 5 });
  return game.page.evaluate(() => window.quorble.sound.firstSoundAt);
}

async function loads(browser, url) {
  const cold = [];
  const warm = [];
  for (let i = 0; i < kLoads; i++) {
    const context = await browser.createBrowserContext();
    const game = await GamePage.open(context);
    cold.push(await firstSound(game, url));
    await sleep(500);
    warm.push(await firstSound(game, url));
    await context.close();
  }
  figures('navigation to the first sound, cold', cold);
  figures('navigation to the first sound, warm (cached)', warm);
}

// At the roll prompt every key is echoed: the queue is purged, then the
// key's name is spoken.
async function keys(game) {
  const toSpeech = [];
  const toCut = [];
  for (let i = 0; i < kKeys; i++) {
    const serial = await game.page.evaluate(() => window.quorble.speech.serial);
    await game.play(['x']);
    await game.page.waitForFunction((id) => window.quorble.speech.handedAt.has(id + 1),
      { polling: 5 }, serial);
    const times = await game.page.evaluate((id) => ({ key: window.quorble.keyAt,
      handed: window.quorble.speech.handedAt.get(id + 1), cut: window.quorble.speech.purgedAt }), serial);
    toSpeech.push(times.handed - times.key);
    toCut.push(times.cut - times.key);
    await sleep(150);
  }
  figures('key to the first speech sample handed to the mixer', toSpeech);
  figures('key to silence after a cut (purge handed to the mixer)', toCut);
}

// The page's thread is pinged without pause: the longest gap between two
// pings is its longest task, as the player would feel it, the machine's
// other work included. The browser's own long-task reports (over 50 ms)
// come beside it.
async function longestTask(game, seconds) {
  await game.page.evaluate(() => {
    window.longTasks = [];
    new PerformanceObserver((list) => {
      window.longTasks.push(...list.getEntries().map((entry) => entry.duration));
    }).observe({ entryTypes: ['longtask'] });
    const channel = new MessageChannel();
    window.longest = 0;
    let last = performance.now();
    channel.port1.onmessage = () => {
      const now = performance.now();
      window.longest = Math.max(window.longest, now - last);
      last = now;
      if (!window.stopPings) channel.port2.postMessage(0);
    };
    channel.port2.postMessage(0);
  });
  await sleep(seconds * 1000);
  return game.page.evaluate(() => {
    window.stopPings = true;
    return { gap: window.longest, reported: window.longTasks };
  });
}

async function idle(game) {
  await game.page.waitForFunction(() => !window.quorble.speech.speaking(), { polling: 50 });
  await sleep(2000);
  const before = await game.page.metrics();
  await sleep(10000);
  const after = await game.page.metrics();
  const state = await game.page.evaluate(() => window.quorble.sound.context.state);
  const busy = (after.TaskDuration - before.TaskDuration) * 1000;
  console.log(`idle at a prompt for 10 s: audio context ${state}, page thread busy ${busy.toFixed(1)} ms`);
}

function transferred(name, files) {
  let raw = 0;
  let gzip = 0;
  for (const file of new Set(files)) {
    const bytes = readFileSync(`${siteDir}${file}`);
    raw += bytes.length;
    gzip += gzipSync(bytes, { level: 9 }).length;
  }
  const mb = (bytes) => (bytes / 1e6).toFixed(2);
  console.log(`transferred for ${name}: ${mb(raw)} MB raw, ${mb(gzip)} MB gzip`);
}

const site = await serveSite(siteDir);
const browser = await launchBrowser();
try {
  await loads(browser, site.url);
  site.requested.length = 0;
  const game = await GamePage.open(await browser.createBrowserContext(), site.url);
  transferred('the default game', site.requested.filter((file) => !file.endsWith('.ico')));
  await game.run('key n n enter 1 y\nkey enter enter y\n');
  await keys(game);
  await idle(game);
  const reader = await GamePage.open(await browser.createBrowserContext(), site.url);
  const pinging = longestTask(reader, 20);
  await reader.run('key y');
  const { gap, reported } = await pinging;
  console.log(`longest task on the page's thread while the instructions are read (20 s): ` +
    `${gap.toFixed(1)} ms; tasks over 50 ms the browser reported: ${reported.length}` +
    `${reported.length ? ` (longest ${Math.max(...reported).toFixed(1)} ms)` : ''}`);
  site.requested.length = 0;
  await GamePage.open(await browser.createBrowserContext(), `${site.url}?companion`);
  transferred('companion mode', site.requested.filter((file) => !file.endsWith('.ico')));
} finally {
  await browser.close();
  site.close();
}
