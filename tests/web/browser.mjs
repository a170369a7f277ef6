// The built site served on loopback and played in headless Chromium, with
// the simulator beside it for the transcript the page must match.
import { spawnSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync, statSync, writeFileSync } from 'node:fs';
import http from 'node:http';
import { tmpdir } from 'node:os';
import { extname, join, normalize } from 'node:path';
import puppeteer from 'puppeteer-core';

const kTypes = { '.html': 'text/html', '.js': 'text/javascript', '.wasm': 'application/wasm' };
const site = process.env.QUORBLE_WEB_SITE;

// A plain static server, as any host would be: no special headers, and
// the files' times for the browser's cache.
// What it was asked for is kept, by path.
export async function serveSite(root = site) {
  const requested = [];
  const server = http.createServer((request, response) => {
    const path = normalize(new URL(request.url, 'http://host').pathname).replace(/^\/$/, '/index.html');
    requested.push(path);
    try {
      const file = join(root, path);
      const modified = statSync(file).mtime.toUTCString();
      if (request.headers['if-modified-since'] === modified) return response.writeHead(304).end();
      response.writeHead(200, { 'content-type': kTypes[extname(path)] ?? 'application/octet-stream',
        'last-modified': modified });
      response.end(readFileSync(file));
    } catch {
      response.writeHead(404).end();
    }
  });
  await new Promise((resolve) => server.listen(0, '127.0.0.1', resolve));
  return { url: `http://127.0.0.1:${server.address().port}/`, requested, close: () => server.close() };
}

// Chromium as root on a machine with no network beyond loopback.
export function launchBrowser() {
  return puppeteer.launch({
    executablePath: '/usr/bin/chromium',
    headless: true,
    args: ['--headless=new', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync',
      '--autoplay-policy=no-user-gesture-required', '--mute-audio'],
  });
}

// The simulator's key names and the codes they give.
const kNamed = { backspace: 8, tab: 9, enter: 13, shift: 16, ctrl: 17, alt: 18, esc: 27, space: 32,
  left: 37, up: 38, right: 39, down: 40 };
export function keyCode(name) {
  if (/^[a-z]$/.test(name)) return name.toUpperCase().charCodeAt(0);
  if (/^[0-9]$/.test(name)) return name.charCodeAt(0);
  if (/^kp[0-9]$/.test(name)) return 96 + Number(name[2]);
  if (/^f([1-9]|1[0-2])$/.test(name)) return 111 + Number(name.slice(1));
  if (name in kNamed) return kNamed[name];
  throw new Error(`no key ${name}`);
}

// A page of the game, with its test trace on and dice forced.
export class GamePage {
  // With no address, the page is left blank.
  static async open(browser, url) {
    const page = await browser.newPage();
    page.on('pageerror', (error) => console.error('page error:', error.message));
    page.on('dialog', (dialog) => dialog.dismiss());
    await page.evaluateOnNewDocument(() => { window.QUORBLE_TEST = { trace: true }; });
    const game = new GamePage(page, await page.createCDPSession());
    if (url) await game.load(url);
    return game;
  }

  constructor(page, session) {
    this.page = page;
    this.session = session;
  }

  async load(url) {
    await (url ? this.page.goto(url) : this.page.reload());
    await this.page.waitForFunction(() => window.quorble?.loaded, { timeout: 30000 });
  }

  // The key as the keyboard sends it, by its Windows key code.
  async press(code) {
    const event = { windowsVirtualKeyCode: code, nativeVirtualKeyCode: code };
    await this.session.send('Input.dispatchKeyEvent', { type: 'rawKeyDown', ...event });
    await this.session.send('Input.dispatchKeyEvent', { type: 'keyUp', ...event });
  }

  // Each key when the game next waits for a key alone, as the simulator
  // presses them.
  async play(keys) {
    for (const name of keys) {
      await this.page.waitForFunction(() => window.quorble.waitingForKey && !window.quorble.keys.length,
        { polling: 10, timeout: 60000 });
      await this.press(keyCode(name));
    }
  }

  // A simulator script played from the start key on, until the game ends
  // or waits for a key the script doesn't have.
  async run(script) {
    const { dice, keys } = scriptParts(script);
    await this.page.evaluate((faces) => window.quorble.dice.push(...faces), dice);
    await this.press(32);
    await this.play(keys);
    await this.page.waitForFunction(() => window.quorble.over ||
      (window.quorble.waitingForKey && !window.quorble.keys.length), { polling: 50, timeout: 120000 });
  }

  // What the game said, in order.
  spoken() {
    return this.page.evaluate(() => window.quorble.traceLines
      .filter((line) => line.startsWith('speech: ')).map((line) => line.slice(8)));
  }
}

// A simulator script's forced dice and keys, in order.
export function scriptParts(script) {
  const words = (command) => script.split('\n').filter((line) => line.startsWith(`${command} `))
    .flatMap((line) => line.split(/\s+/).slice(1).filter(Boolean));
  return { dice: words('dice').map(Number), keys: words('key') };
}

// The simulator's run of `script` on a documents folder of its own; the
// texts it spoke, in order. Runs share `world.docs` as games share a disk.
export function simulatorWorld() {
  const root = mkdtempSync(join(tmpdir(), 'quorble-web-'));
  return {
    spoken(script, options = []) {
      writeFileSync(join(root, 'script'), script);
      const { stdout: out } = spawnSync(process.env.QUORBLE_SIM, ['--docs', root, '--samples',
        process.env.QUORBLE_SAMPLES, ...options, join(root, 'script')], { encoding: 'utf8' });
      return out.split('\n').filter((line) => / speak (async )?"/.test(line))
        .map((line) => JSON.parse(line.slice(line.indexOf('"')).replace(/\\x(..)/g, '\\u00$1')));
    },
    remove: () => rmSync(root, { recursive: true, force: true }),
  };
}
