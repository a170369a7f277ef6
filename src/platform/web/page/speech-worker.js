// The embedded speech engine, off the page's thread so that no long text
// ever holds up a key. Texts come from the page; their sound goes straight
// to the mixer through the port the page hands over, piece by piece as the
// engine makes it, each text closed by an end mark.
import createEngine from './espeak-ng.js';

// Texts longer than this are said a sentence at a time, so that a purge
// between two sentences is seen before the rest is made.
const kLongText = 200;

let engine = null;
let mixer = null;
let generation = 0;
let currentVoice = '';
const jobs = [];
let working = false;

const ready = createEngine().then((module) => {
  engine = new module.eSpeakNGWorker();
  // The first text takes far longer than the rest: pay for it now.
  engine.synthesize(' ready ', () => 0);
});

function pieces(text) {
  if (text.length <= kLongText) return [text];
  return text.split(/(?<=[.!?])\s+/).filter((piece) => piece.length > 0);
}

function say(job) {
  if (job.voice !== currentVoice && engine.set_voice(job.voice) === 0) currentVoice = job.voice;
  // The pitch outlives a change of voice in the engine: set it every time.
  engine.set_pitch(job.pitch);
  engine.set_rate(job.wordsPerMinute);
  const { gain } = job;
  let first = true;
  return (piece) => {
    engine.synthesize(piece, (pcm) => {
      const samples = new Float32Array(pcm.length);
      for (let i = 0; i < pcm.length; i++) samples[i] = (pcm[i] / 32768) * gain;
      mixer.postMessage({ generation: job.generation, samples }, [samples.buffer]);
      // When each text's sound first reached the mixer, for measurements.
      if (first) postMessage({ handed: job.id, at: performance.timeOrigin + performance.now() });
      first = false;
      return job.generation < generation ? 1 : 0;
    });
  };
}

// One sentence, then back to the message loop, until the queue is empty.
async function work() {
  if (working) return;
  working = true;
  await ready;
  while (jobs.length > 0) {
    const job = jobs.shift();
    if (job.generation < generation) continue;
    const speak = say(job);
    for (const piece of pieces(job.text)) {
      if (job.generation < generation) break;
      speak(piece);
      await new Promise((resolve) => setTimeout(resolve, 0));
    }
    if (job.generation >= generation) mixer.postMessage({ generation: job.generation, id: job.id, end: true });
  }
  working = false;
}

onmessage = async ({ data }) => {
  if (data.mixer) {
    mixer = data.mixer;
  } else if (data.open) {
    await ready;
    let loaded = 0;
    data.open.forEach((name, index) => {
      if (engine.set_voice(name) === 0) loaded |= 1 << index;
    });
    currentVoice = '';
    postMessage({ opened: loaded });
  } else if (data.purge) {
    generation = data.purge;
  } else if (data.speak) {
    jobs.push(data.speak);
    work();
  }
};
