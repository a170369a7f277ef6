// The page's speech queue: the embedded engine in its worker, or the
// browser's own speech synthesis with the player's voices. Either way the
// game sees one queue: what is pending until heard, and a purge that
// empties it at once.
const kVoicesWait = 1500;  // ms a browser may take to list its voices

export class Speech {
  constructor(sound, onChange) {
    this.sound = sound;
    this.onChange = onChange;
    this.pending = new Set();
    this.serial = 0;
    this.generation = 1;
    this.systemVoices = [];
    this.handedAt = new Map();
    this.worker = new Worker('speech-worker.js', { type: 'module' });
    this.worker.onmessage = ({ data }) => this.fromWorker(data);
    this.opened = null;
    sound.onHeard = (id) => this.heard(id);
  }

  // The mixer's end of the stream goes to the worker once both are there.
  connect() {
    const channel = new MessageChannel();
    this.sound.takeSpeech(channel.port1);
    this.worker.postMessage({ mixer: channel.port2 }, [channel.port2]);
  }

  fromWorker(data) {
    if ('opened' in data) this.opened?.(data.opened);
    if ('handed' in data) this.handedAt.set(data.handed, data.at);
  }

  // A bit for each engine voice the worker could load.
  open(names) {
    return new Promise((resolve) => {
      this.opened = resolve;
      this.worker.postMessage({ open: names });
    });
  }

  // The player's own voices, in their language where they have any, each
  // group by name so that the numbers stay the same from run to run.
  async findSystemVoices() {
    if (!('speechSynthesis' in window)) return [];
    let voices = speechSynthesis.getVoices();
    if (voices.length === 0) {
      await new Promise((resolve) => {
        speechSynthesis.addEventListener('voiceschanged', resolve, { once: true });
        setTimeout(resolve, kVoicesWait);
      });
      voices = speechSynthesis.getVoices();
    }
    const language = (navigator.language || 'en').split('-')[0];
    const theirs = voices.filter((voice) => voice.lang.split(/[-_]/)[0] === language);
    const offered = theirs.length > 0 ? theirs : voices;
    this.systemVoices = [...offered].sort((a, b) => a.name.localeCompare(b.name));
    return this.systemVoices;
  }

  speak({ text, engineText, voice, voiceName, pitch, wordsPerMinute, rate, gain }) {
    const id = ++this.serial;
    this.pending.add(id);
    this.sound.wake();
    if (voiceName === '') {
      this.speakSystem(id, text, voice, rate, gain);
      return;
    }
    this.worker.postMessage({
      speak: { id, generation: this.generation, text: engineText, voice: voiceName, pitch,
               wordsPerMinute, gain },
    });
  }

  speakSystem(id, text, voice, rate, gain) {
    const utterance = new SpeechSynthesisUtterance(text);
    const chosen = this.systemVoices[Math.min(Math.max(voice, 0), this.systemVoices.length - 1)];
    if (chosen) utterance.voice = chosen;
    // The same scale as the embedded engine: +10 three times normal.
    utterance.rate = Math.min(Math.max(3 ** (rate / 10), 0.1), 10);
    utterance.volume = Math.min(Math.max(gain, 0), 1);
    utterance.onend = utterance.onerror = () => this.heard(id);
    speechSynthesis.speak(utterance);
  }

  purge() {
    this.generation++;
    this.pending.clear();
    this.worker.postMessage({ purge: this.generation });
    this.sound.purgeSpeech(this.generation);
    // When the cut was handed to the mixer, for measurements.
    this.purgedAt = performance.timeOrigin + performance.now();
    if (this.systemVoices.length > 0) speechSynthesis.cancel();
    this.onChange();
  }

  heard(id) {
    if (this.pending.delete(id)) this.onChange();
  }

  speaking() {
    return this.pending.size > 0;
  }
}
