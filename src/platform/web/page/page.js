// The page around the game: it loads the game, the speech engine, the
// samples and the data folder, starts the game at the first key, and
// carries the game's calls (bridge.js) to the browser. The game's one
// thread sleeps in the browser between events; a key, the end of speech or
// of a sample, or a deadline wakes it.
import { gameKeyCode, keptFromBrowser } from './keys.js';
import { Sound } from './sound.js';
import { Speech } from './speech.js';
import { Files } from './files.js';

const kDocuments = '/documents';
const kProgram = '/program';
const kSamples = Array.from({ length: 8 }, (_, i) => `quorble${i}.wav`);
const kStrategyTable = 'quorble-strategy.bin';
const kInstructions = 'quorble.txt';

// What a test may set before the page loads: a trace of keys and speech,
// and the faces the dice are to show.
const testHooks = window.QUORBLE_TEST || {};

// "?companion=casual&speech=system" as the game's options.
function addressOptions(params) {
  return [...params].map(([name, value]) => (value === '' ? `--${name}` : `--${name}=${value}`));
}

async function fetchBytes(name) {
  const response = await fetch(name);
  if (!response.ok) throw new Error(`${name}: ${response.status}`);
  return new Uint8Array(await response.arrayBuffer());
}

class Page {
  constructor() {
    this.status = document.getElementById('status');
    this.spoken = document.getElementById('spoken');
    this.region = document.getElementById('game');
    this.keys = [];
    this.closing = false;
    this.closeAsked = false;
    this.sleeper = null;
    this.timer = null;
    this.waitingForKey = false;
    this.over = false;
    this.samples = 0;
    this.keyAt = 0;
    this.traceLines = testHooks.trace ? [] : null;
    this.dice = [...(testHooks.dice || [])];
    this.sound = new Sound(() => this.wake());
    this.speech = new Speech(this.sound, () => this.wake());
    this.sound.busy = () => this.speech.speaking();
    this.files = new Files(kDocuments);
    this.firstKey = new Promise((resolve) => { this.started = resolve; });
    this.startKeyPressed = false;
    document.addEventListener('keydown', (event) => this.onKeyDown(event), true);
    window.addEventListener('pagehide', () => this.closeNow());
    // A page brought back from the browser's cache has a game that closed.
    window.addEventListener('pageshow', (event) => { if (event.persisted) location.reload(); });
    this.region.focus();
  }

  async load() {
    const params = new URLSearchParams(location.search);
    const companion = params.has('companion');
    const game = createQuorbleGame({ page: this, noInitialRun: true });
    const names = [...kSamples, kInstructions, ...(companion ? [kStrategyTable] : [])];
    const fetched = Promise.all(names.map((name) => fetchBytes(name).catch(() => null)));
    await this.files.claim();
    await this.sound.ready;
    this.speech.connect();
    if (params.get('speech') === 'system') await this.speech.findSystemVoices();
    const module = await game;
    await this.files.mount(module.FS);
    module.FS.mkdir(kProgram);
    (await fetched).forEach((bytes, i) => {
      // A file that didn't come is missing to the game, which copes.
      if (bytes) module.FS.writeFile(`${kProgram}/${names[i]}`, bytes);
    });
    this.loaded = true;
    if (!this.startKeyPressed) this.say('Press any key to start');
    await this.firstKey;
    this.say('');
    module.callMain(addressOptions(params));
  }

  say(text) {
    this.status.textContent = text;
  }

  onKeyDown(event) {
    if (keptFromBrowser(event)) event.preventDefault();
    if (this.over) {
      location.reload();
      return;
    }
    if (!this.startKeyPressed) {
      // Browsers allow sound only from a key on: this one starts the game.
      this.startKeyPressed = true;
      this.sound.wake();
      this.started();
      return;
    }
    const code = gameKeyCode(event);
    if (code === 0) return;
    this.keys.push(code);
    this.keyAt = performance.timeOrigin + event.timeStamp;
    this.wake();
  }

  nextKey() {
    return this.keys.shift() ?? 0;
  }

  takeClose() {
    const asked = this.closeAsked;
    this.closeAsked = false;
    return asked;
  }

  // The game's wait: woken by any event, or at the deadline.
  sleep(wakeUp, deadlineMs, forKey) {
    this.sleeper = { wakeUp, value: 0, onEvents: true };
    this.waitingForKey = forKey;
    if (this.keys.length > 0 || this.closeAsked) {
      this.wake();
    } else if (Number.isFinite(deadlineMs)) {
      this.timer = setTimeout(() => this.wake(), Math.max(0, deadlineMs - performance.now()));
    }
  }

  // A sleep until `promise` settles; a closing page ends it with `closeValue`.
  sleepOn(promise, wakeUp, closeValue) {
    const sleeper = { wakeUp, value: closeValue, onEvents: false };
    this.sleeper = sleeper;
    promise.then((value) => {
      if (this.sleeper !== sleeper) return;
      this.sleeper = null;
      queueMicrotask(() => wakeUp(value));
    });
  }

  // Out of the event handler first: the game must not be resumed from
  // inside a call the game itself is making.
  wake() {
    const sleeper = this.sleeper;
    if (!sleeper || !sleeper.onEvents) return;
    this.sleeper = null;
    this.waitingForKey = false;
    clearTimeout(this.timer);
    queueMicrotask(() => sleeper.wakeUp(0));
  }

  // The page is going: the game hears a close request and settles its
  // files now, before this handler returns, since nothing after it runs.
  closeNow() {
    if (this.closing) return;
    this.closing = true;
    this.closeAsked = true;
    const sleeper = this.sleeper;
    if (!sleeper) return;
    this.sleeper = null;
    clearTimeout(this.timer);
    sleeper.wakeUp(sleeper.value);
  }

  show(caption) {
    document.title = caption.trim().replace(/\s+/g, ' ');
  }

  message(text) {
    const lines = text.replace(/\r\n?/g, '\n');
    this.say(lines);
    this.spoken.textContent = lines;
    if (!this.closing) alert(lines);
  }

  trace(kind, text) {
    this.traceLines?.push(`${kind}: ${text}`);
    if (kind === 'speech' && text.trim()) this.spoken.textContent = text.trim();
  }

  forcedFace() {
    return this.dice.shift() ?? 0;
  }

  speak(request) {
    this.speech.speak(request);
  }

  createSample(frames, channels, rate) {
    const id = ++this.samples;
    this.sound.create(id, frames, channels, rate);
    return id;
  }

  ended() {
    this.over = true;
    const text = 'The game has ended. Press any key to start it again.';
    this.say(text);
    this.spoken.textContent = text;
  }
}

window.quorble = new Page();
window.quorble.load().catch((error) => {
  window.quorble.message(`Quorble could not start: ${error.message}`);
});
