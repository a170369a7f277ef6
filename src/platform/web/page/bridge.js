// The game's calls into the page, linked into the game as an emscripten
// library. Each one hands over to Module.page (page.js). The three that
// sleep return to the browser through Asyncify until the page wakes them;
// once the page is going away, none of them sleeps.
mergeInto(LibraryManager.library, {
  quorble_wait: function (deadlineMs, forKey) {
    return Asyncify.handleSleep(function (wakeUp) {
      Module.page.sleep(wakeUp, deadlineMs, forKey !== 0);
    });
  },
  quorble_next_key: function () { return Module.page.nextKey(); },
  quorble_closing: function () { return Module.page.closing ? 1 : 0; },
  quorble_take_close: function () { return Module.page.takeClose() ? 1 : 0; },
  quorble_show: function (caption) { Module.page.show(UTF8ToString(caption)); },
  quorble_message: function (text) { Module.page.message(UTF8ToString(text)); },
  quorble_beep: function () { Module.page.sound.beep(); },
  quorble_trace: function (kind, text) {
    Module.page.trace(UTF8ToString(kind), UTF8ToString(text));
  },
  quorble_forced_face: function () { return Module.page.forcedFace(); },

  quorble_speech_open: function (voiceList) {
    var names = UTF8ToString(voiceList).split('\n').filter(function (name) { return name; });
    return Asyncify.handleSleep(function (wakeUp) {
      Module.page.sleepOn(Module.page.speech.open(names), wakeUp, 0);
    });
  },
  quorble_speech_voices: function () { return Module.page.speech.systemVoices.length; },
  quorble_speech_system: function () { return Module.page.speech.systemVoices.length > 0 ? 1 : 0; },
  quorble_speak: function (text, engineText, voice, voiceName, pitch, wordsPerMinute, rate, gain) {
    Module.page.speak({
      text: UTF8ToString(text), engineText: UTF8ToString(engineText), voice: voice,
      voiceName: UTF8ToString(voiceName), pitch: pitch, wordsPerMinute: wordsPerMinute,
      rate: rate, gain: gain,
    });
  },
  quorble_speech_purge: function () { Module.page.speech.purge(); },
  quorble_speaking: function () { return Module.page.speech.speaking() ? 1 : 0; },

  quorble_sample_create: function (frames, frameCount, channels, rate) {
    var values = HEAPF32.slice(frames >> 2, (frames >> 2) + frameCount * channels);
    return Module.page.createSample(values, channels, rate);
  },
  quorble_sample_release: function (id) { Module.page.sound.release(id); },
  quorble_sample_position: function (id, frame) {
    Module.page.sound.post({ type: 'position', id: id, frame: frame });
  },
  quorble_sample_gains: function (id, left, right) {
    Module.page.sound.post({ type: 'gains', id: id, left: left, right: right });
  },
  quorble_sample_rate: function (id, hz) { Module.page.sound.post({ type: 'rate', id: id, hz: hz }); },
  quorble_sample_play: function (id, looping) { Module.page.sound.play(id, looping !== 0); },
  quorble_sample_stop: function (id) { Module.page.sound.stop(id); },
  quorble_sample_playing: function (id) { return Module.page.sound.isPlaying(id) ? 1 : 0; },

  quorble_persist: function (path) { return Module.page.files.persist(UTF8ToString(path)) ? 1 : 0; },
  quorble_sync: function () {
    if (Module.page.closing) return 1;
    return Asyncify.handleSleep(function (wakeUp) {
      var synced = Module.page.files.sync().then(function (ok) { return ok ? 1 : 0; });
      Module.page.sleepOn(synced, wakeUp, 1);
    });
  },
  quorble_lock_state: function () { return Module.page.files.lock; },
  // The C library's fsync would copy the whole folder to IndexedDB and
  // sleep until it is done, which a closing page never sees the end of.
  // Each change is made durable by quorble_persist and quorble_sync
  // instead, journal first.
  fd_sync: function (fd) { return 0; },
  quorble_ended: function () { Module.page.ended(); },
});
