// A whole one-player game through the real page: set-up, two turns, S to
// save, a reload that resumes it, the eleven turns left and the final
// reading. The page must say what the simulator says for the same keys and
// dice, and its saved game must outlive the reload.
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';
import { GamePage, launchBrowser, serveSite, simulatorWorld } from './browser.mjs';

const kRows = ['1 1 1 2 2', '2 2 2 1 1', '3 3 3 1 1', '4 4 4 1 1', '5 5 5 1 1', '6 6 6 1 1',
  '4 4 4 6 2', '5 5 5 5 2', '2 2 3 3 3', '1 2 3 4 6', '1 2 3 4 5', '6 5 4 3 3', '6 6 6 6 6'];
const turn = (row) => `dice ${kRows[row - 1]}\nkey r k${' down'.repeat(row - 1)} enter enter\n`;
const range = (from, to) => Array.from({ length: to - from + 1 }, (_, i) => from + i);

const kBeforeSave = `key n n enter 1 y\nkey enter enter y\n${turn(1)}${turn(2)}key s\n`;
const kAfterReload = `key n n\n${range(3, 13).map(turn).join('')}key esc\n`;

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

test('a saved game resumed after a reload says what the simulator says', async () => {
  const world = simulatorWorld();
  try {
    const game = await GamePage.open(browser, site.url);
    await game.run(kBeforeSave);
    assert.deepEqual(await game.spoken(), world.spoken(kBeforeSave));
    await game.load();
    await game.run(kAfterReload);
    assert.deepEqual(await game.spoken(), world.spoken(kAfterReload));
  } finally {
    world.remove();
  }
});
