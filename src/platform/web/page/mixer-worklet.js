// The page's one mixer: the game's samples, each resampled from its own
// rate to the context's, and the speech the worker streams in. It tells
// the page when a sample ends, when each text has been heard, and when it
// has been silent for a second, so that the page can suspend the context.
const kFadeSeconds = 0.004;  // where a stop or a purge cuts into sound
const kQuiet = 1e-4;         // below this a frame counts as silence
const kSpeechRate = 22050;   // the engine's own rate

// Catmull-Rom through four neighbours: smooth enough that a sample at
// 22 kHz doesn't ring at 48 kHz, cheap enough for every frame.
function cubic(a, b, c, d, t) {
  return b + 0.5 * t * (c - a + t * (2 * a - 5 * b + 4 * c - d + t * (3 * (b - c) + d - a)));
}

class Sample {
  constructor({ frames, channels, rate }) {
    this.frames = frames;
    this.channels = channels;
    this.length = frames.length / channels;
    this.fileRate = rate;
    this.playRate = rate;
    this.position = 0;
    this.playing = false;
    this.looping = false;
    this.left = 1;
    this.right = 1;
    this.fadeIn = 0;
    this.fadeOut = 0;
    this.serial = 0;
  }

  at(frame, channel) {
    if (frame < 0 || frame >= this.length) {
      if (!this.looping || this.length === 0) return 0;
      frame = ((frame % this.length) + this.length) % this.length;
    }
    return this.frames[frame * this.channels + Math.min(channel, this.channels - 1)];
  }

  value(channel) {
    const whole = Math.floor(this.position);
    return cubic(this.at(whole - 1, channel), this.at(whole, channel),
                 this.at(whole + 1, channel), this.at(whole + 2, channel), this.position - whole);
  }

  play(looping, serial, fadeFrames) {
    this.looping = looping;
    this.serial = serial;
    if (this.length === 0) return false;
    if (this.position >= this.length) {
      if (!looping) return false;
      this.position = 0;
    }
    // A loop may start anywhere in its wave; a sample played once starts
    // from its own silence and needs no fade.
    this.fadeIn = looping ? fadeFrames : 0;
    this.fadeTotal = fadeFrames;
    this.fadeOut = 0;
    this.playing = true;
    return true;
  }

  stop(fadeFrames) {
    if (this.playing) {
      this.fadeOut = fadeFrames;
      this.fadeTotal = fadeFrames;
    }
    this.playing = false;
  }

  audible() { return this.playing || this.fadeOut > 0; }

  // Adds into the two outputs; true when a sample played once has ended.
  mixInto(left, right, sampleRate) {
    const step = this.playRate / sampleRate;
    for (let i = 0; i < left.length && this.audible(); i++) {
      if (this.position >= this.length) {
        if (!this.looping || !this.playing) {
          this.fadeOut = 0;
          this.playing = false;
          this.position = 0;  // so that a later play sounds the whole sample again
          return !this.looping;
        }
        this.position -= this.length;
      }
      let gain = 1;
      if (this.fadeIn > 0) gain *= 1 - this.fadeIn-- / this.fadeTotal;
      if (this.fadeOut > 0) gain *= --this.fadeOut / this.fadeTotal;
      left[i] += this.value(0) * this.left * gain;
      right[i] += this.value(1) * this.right * gain;
      this.position += step;
    }
    return false;
  }
}

// The speech stream: pieces at the engine's rate, read at the context's,
// with the end of each text marked where it falls in the stream.
class SpeechStream {
  constructor() {
    this.pieces = [];  // {generation, samples, id, end}
    this.position = 0;  // within the first piece, in engine samples
    this.generation = 0;
    this.fade = 0;
    this.fadeTotal = 1;
    this.fadingPieces = null;
  }

  add(piece) {
    if (piece.generation >= this.generation) this.pieces.push(piece);
  }

  // What the newer generation already sent stays: the worker's port and
  // the page's are two ways in, and need not keep each other's order.
  purge(generation, fadeFrames) {
    this.generation = generation;
    const old = this.pieces.filter((piece) => piece.generation < generation);
    this.pieces = this.pieces.filter((piece) => piece.generation >= generation);
    if (old.length > 0 && old[0].samples && this.fade === 0) {
      this.fadingPieces = old;
      this.fade = fadeFrames;
      this.fadeTotal = fadeFrames;
    } else if (this.fade === 0) {
      this.position = 0;
    }
  }

  buffered() { return this.pieces.length > 0 || this.fade > 0; }

  // The sample `offset` places after the first piece's start; 0 past
  // what has come.
  at(pieces, offset) {
    for (const piece of pieces) {
      if (!piece.samples) continue;
      if (offset < piece.samples.length) return offset >= 0 ? piece.samples[offset] : 0;
      offset -= piece.samples.length;
    }
    return 0;
  }

  value(pieces) {
    const whole = Math.floor(this.position);
    const t = this.position - whole;
    return cubic(this.at(pieces, whole - 1), this.at(pieces, whole), this.at(pieces, whole + 1),
                 this.at(pieces, whole + 2), t);
  }

  // Mixes what has come; reports each text heard through `heard`.
  mixInto(left, right, sampleRate, heard) {
    const step = kSpeechRate / sampleRate;
    let i = 0;
    if (this.fade > 0) {
      for (; i < left.length && this.fade > 0; i++) {
        const v = this.value(this.fadingPieces) * (--this.fade / this.fadeTotal);
        left[i] += v;
        right[i] += v;
        this.position += step;
      }
      if (this.fade === 0) {
        this.fadingPieces = null;
        this.position = 0;
      }
    }
    for (; i < left.length; i++) {
      this.dropFinished(heard);
      const first = this.pieces[0];
      if (!first) break;
      const v = this.value(this.pieces);
      left[i] += v;
      right[i] += v;
      this.position += step;
    }
    this.dropFinished(heard);
  }

  dropFinished(heard) {
    for (;;) {
      const first = this.pieces[0];
      if (!first) return;
      if (first.end) {
        heard(first.id);
        this.pieces.shift();
        continue;
      }
      if (this.position < first.samples.length) return;
      this.position -= first.samples.length;
      this.pieces.shift();
    }
  }
}

class Mixer extends AudioWorkletProcessor {
  constructor() {
    super();
    this.samples = new Map();
    this.speech = new SpeechStream();
    this.fadeFrames = Math.round(kFadeSeconds * sampleRate);
    this.silentFrames = 0;
    this.idleSaid = false;
    this.soundFrames = 0;
    this.beepLeft = 0;
    this.beepPhase = 0;
    this.port.onmessage = (event) => this.onMessage(event.data);
  }

  onMessage(message) {
    if (message.speechPort) {
      message.speechPort.onmessage = (event) => this.speech.add(event.data);
      return;
    }
    const sample = this.samples.get(message.id);
    switch (message.type) {
      case 'create': this.samples.set(message.id, new Sample(message)); break;
      case 'release': this.samples.delete(message.id); break;
      case 'position': if (sample) sample.position = Math.min(message.frame, sample.length); break;
      case 'gains': if (sample) Object.assign(sample, { left: message.left, right: message.right }); break;
      case 'rate': if (sample) sample.playRate = message.hz > 0 ? message.hz : sample.fileRate; break;
      case 'play':
        if (sample && !sample.play(message.looping, message.serial, this.fadeFrames)) {
          this.port.postMessage({ ended: message.id, serial: message.serial });
        }
        break;
      case 'stop': if (sample) sample.stop(this.fadeFrames); break;
      case 'purge': this.speech.purge(message.generation, this.fadeFrames); break;
      case 'beep': this.beepLeft = Math.round(0.15 * sampleRate); break;
      case 'count': this.port.postMessage({ counted: this.soundFrames }); this.soundFrames = 0; break;
    }
  }

  process(inputs, outputs) {
    const out = outputs[0];
    const left = out[0];
    const right = out[1] || out[0];
    left.fill(0);
    if (right !== left) right.fill(0);
    let busy = this.speech.buffered() || this.beepLeft > 0;
    for (const [id, sample] of this.samples) {
      if (!sample.audible()) continue;
      busy = true;
      if (sample.mixInto(left, right, sampleRate)) {
        this.port.postMessage({ ended: id, serial: sample.serial });
      }
    }
    this.speech.mixInto(left, right, sampleRate, (id) => this.port.postMessage({ heard: id }));
    this.mixBeep(left, right);
    this.account(left, right, busy);
    return true;
  }

  mixBeep(left, right) {
    for (let i = 0; i < left.length && this.beepLeft > 0; i++, this.beepLeft--) {
      this.beepPhase += (2 * Math.PI * 880) / sampleRate;
      const v = 0.25 * Math.sin(this.beepPhase) * Math.min(1, this.beepLeft / this.fadeFrames);
      left[i] += v;
      right[i] += v;
    }
  }

  account(left, right, busy) {
    const before = this.soundFrames;
    for (let i = 0; i < left.length; i++) {
      if (Math.abs(left[i]) > kQuiet || Math.abs(right[i]) > kQuiet) this.soundFrames++;
    }
    // The page's first sound, for measurements of the load.
    if (!this.sounded && this.soundFrames > before) {
      this.sounded = true;
      this.port.postMessage({ sounding: true });
    }
    if (busy) {
      this.silentFrames = 0;
      this.idleSaid = false;
      return;
    }
    this.silentFrames += left.length;
    if (!this.idleSaid && this.silentFrames >= sampleRate) {
      this.idleSaid = true;
      this.port.postMessage({ idle: true });
    }
  }
}

registerProcessor('quorble-mixer', Mixer);
