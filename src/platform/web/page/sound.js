// The page's side of the mixer: the audio context and its worklet, the
// samples' state as the game asks for it, and the context suspended after
// a second of silence and woken by the next sound.
export class Sound {
  constructor(onChange) {
    this.onChange = onChange;
    this.onHeard = () => {};
    this.busy = () => false;  // whether speech is still to come
    this.asleep = false;
    this.playing = new Map();  // id -> the serial of its current play
    this.serial = 0;
    this.counted = null;
    this.context = new AudioContext({ latencyHint: 'interactive' });
    this.ready = this.context.audioWorklet.addModule('mixer-worklet.js').then(() => {
      this.node = new AudioWorkletNode(this.context, 'quorble-mixer', {
        numberOfInputs: 0,
        outputChannelCount: [2],
      });
      this.node.connect(this.context.destination);
      this.node.port.onmessage = ({ data }) => this.fromMixer(data);
    });
  }

  takeSpeech(port) {
    this.node.port.postMessage({ speechPort: port }, [port]);
  }

  fromMixer(data) {
    if ('heard' in data) this.onHeard(data.heard);
    if ('ended' in data && this.playing.get(data.ended) === data.serial) {
      this.playing.delete(data.ended);
      this.onChange();
    }
    if (data.idle && this.playing.size === 0 && !this.busy()) {
      this.asleep = true;
      this.context.suspend();
    }
    if ('counted' in data) this.counted?.(data.counted);
    if (data.sounding) this.firstSoundAt = performance.now();
  }

  // Only after a key may a page make sound: the first key calls this. A
  // resume asked for after a suspend is carried out after it.
  wake() {
    if (this.asleep || this.context.state !== 'running') {
      this.asleep = false;
      this.context.resume().catch(() => {});
    }
  }

  post(message) {
    this.node.port.postMessage(message);
  }

  create(id, frames, channels, rate) {
    this.post({ type: 'create', id, frames, channels, rate });
  }

  release(id) {
    this.playing.delete(id);
    this.post({ type: 'release', id });
  }

  play(id, looping) {
    const serial = ++this.serial;
    this.playing.set(id, serial);
    this.wake();
    this.post({ type: 'play', id, looping, serial });
  }

  stop(id) {
    this.playing.delete(id);
    this.post({ type: 'stop', id });
  }

  isPlaying(id) {
    return this.playing.has(id);
  }

  purgeSpeech(generation) {
    this.post({ type: 'purge', generation });
  }

  beep() {
    this.wake();
    this.post({ type: 'beep' });
  }

  // Frames with sound since the last count, for tests.
  countFrames() {
    return new Promise((resolve) => {
      this.counted = resolve;
      this.post({ type: 'count' });
    });
  }
}
