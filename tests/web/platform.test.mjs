// The browser's side of the platform: what a screen reader finds on the
// page, keys kept from the browser, sound really rendered and the context
// put to sleep, files that outlive a closed tab, one tab at a time, and
// the companion's keys. Each test in a browser context of its own, so
// that none sees another's data folder or lock.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { GamePage, launchBrowser, serveSite, simulatorWorld } from './browser.mjs';

const kSetUp = 'key n n enter 1 y\nkey enter enter y\n';
const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

let site;
let browser;
before(async () => {
  site = await serveSite();
  browser = await launchBrowser();
});
after(async () => {
  await browser?.close();
  site?.close();
});

const openGame = async (address = '') =>
  GamePage.open(await browser.createBrowserContext(), site.url + address);

function findNode(node, wanted) {
  if (Object.entries(wanted).every(([key, value]) => node[key] === value)) return node;
  for (const child of node.children ?? []) {
    const found = findNode(child, wanted);
    if (found) return found;
  }
  return null;
}

test('a screen reader finds one labelled application, its start text and what was said', async () => {
  const game = await openGame();
  const tree = () => game.page.accessibility.snapshot();
  const name = 'Quorble, a dice game played by ear';
  assert.ok(findNode(await tree(), { role: 'application', name }));
  assert.ok(findNode(await tree(), { name: 'Press any key to start' }));
  await game.run('');
  const log = findNode(await tree(), { role: 'log', live: 'polite' });
  assert.equal(log.children?.[0]?.name, 'yes', 'the last text spoken');
  assert.equal(await game.page.evaluate(() => document.activeElement.id), 'game');
});

test('sound is rendered while speech plays, and a second after it the context sleeps', async () => {
  const game = await openGame();
  await game.run('key n');
  const counts = () => game.page.evaluate(() => window.quorble.sound.countFrames());
  await counts();
  await sleep(300);
  assert.ok(await game.page.evaluate(() => window.quorble.speech.speaking()));
  assert.ok((await counts()) > 0, 'frames with sound while speaking');
  await game.page.waitForFunction(() => !window.quorble.speech.speaking(), { polling: 20 });
  await sleep(1500);
  assert.equal(await game.page.evaluate(() => window.quorble.sound.context.state), 'suspended');
});

test('F1, F5 and F12 reach the game and not the browser', async () => {
  const game = await openGame();
  await game.run('key n');
  await game.page.evaluate(() => {
    window.notReloaded = true;
    window.prevented = [];
    window.addEventListener('keydown', (event) => window.prevented.push(event.defaultPrevented));
  });
  await game.play(['f1', 'f5', 'f12']);
  assert.deepEqual(await game.page.evaluate(() => window.prevented), [true, true, true]);
  assert.ok(await game.page.evaluate(() => window.notReloaded));
  const keys = await game.page.evaluate(() => window.quorble.traceLines.filter((l) => l.startsWith('key')));
  assert.deepEqual(keys.slice(-3), ['key: 112', 'key: 116', 'key: 123']);
});

test('a tab closed mid-game loses nothing, and a second tab is refused', async () => {
  const game = await openGame();
  await game.run(`${kSetUp}dice 1 1 1 2 2\nkey r k enter enter\n`);
  await game.load();  // the close request saves the game as the page goes
  await game.run('key n n');
  const spoken = await game.spoken();
  assert.ok(spoken.includes(' getting saved game '), spoken.join('|'));
  assert.equal(spoken.at(-1), ' Press R, to roll the dice ');

  const second = await GamePage.open(game.page.browserContext(), site.url);
  await second.run('');
  assert.ok(await second.page.evaluate(() => window.quorble.over));
  assert.deepEqual(await second.spoken(), [' Quorble is already running. ']);
});

test('in companion mode F5 and F6 speak in the page as in the simulator', async () => {
  const script = `${kSetUp}dice 1 1 1 2 2\nkey r f5 f6 k\n`;
  const world = simulatorWorld();
  const game = await openGame('?companion');
  await game.run(script);
  assert.deepEqual(await game.spoken(), world.spoken(script, ['--companion']));
  world.remove();
  assert.ok(site.requested.includes('/quorble-strategy.bin'));
});
