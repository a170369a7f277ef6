// Speaking, the key echo, players' voices, samples and the two dialogues
// for rate and voice.
#include "file_names.h"
#include "gamestate.h"
#include "prompts.h"

namespace quorble {
namespace {

const YesNoPlace kVoicePlace{.byDefault = 2};

// A number's sample is named by the last digit of its text.
std::string SampleOf(int number) { return file_names::Sample(nt(number).back() - '0'); }

}  // namespace

void Form1::say(const std::string& text) { Voice->Speak(text, SVSFDefault); }

void Form1::say2(const std::string& text) { Voice->Speak(text, SVSFlagsAsync); }

void Form1::stopspeech() { Voice->Speak("", SVSFPurgeBeforeSpeak); }

void Form1::saykey() {
  Voice->SetRate(vr + 5);
  Voice->Speak("", SVSFPurgeBeforeSpeak);
  if (g != keys::kF1) Voice->Speak(g2, SVSFlagsAsync);
  Voice->SetRate(vr);
}

void Form1::setvoice() {
  nv = pv[pup];
  vr = pr[pup];
  Voice = plat.NewSpVoice();
  Voice->SetVoice(nv);
  Voice->SetRate(vr);
}

void Form1::playFile(const std::string& name, int position, bool keyEnds) {
  clk();
  sbuf = ds8->CreateSoundBufferFromFile(plat.ProgramFolder() + "/" + name, sbdesc);
  sbuf->SetCurrentPosition(position);
  sbuf->SetVolume(0);
  sbuf->SetFrequency(fq);
  sbuf->Play(0);
  pumpUntil([&] { return sbuf->GetStatus() != DSBSTATUS_PLAYING || (keyEnds && !g.empty()); },
            WaitFor::Sound);
  sbuf->Stop();
  sbuf.reset();
}

void Form1::play(int a) { playFile(SampleOf(a), 0, false); }

void Form1::play2(int a) { playFile(SampleOf(a), 0, true); }

void Form1::playspec() {
  playFile(file_names::Sample(file_names::kSettlingSample), file_names::kSettlingTailOffset, false);
}

void Form1::openFiller() {
  sbuf = ds8->CreateSoundBufferFromFile(
      plat.ProgramFolder() + "/" + file_names::Sample(file_names::kFillerSample), sbdesc);
  fq = sbuf->GetFrequency() + 1;
  sbuf->SetCurrentPosition(0);
  sbuf->SetVolume(0);
}

void Form1::adjrate() {
  for (;;) {
    clk();
    Voice->SetRate(vr);
    Voice->Speak("to adjust the speech rate, use the arrow keys and then press enter",
                 SVSFlagsAsync);
    Voice->Speak(std::to_string(vr), SVSFlagsAsync);
    for (;;) {
      g.clear();
      pumpUntil([&] { return !g.empty(); }, WaitFor::Key);
      if (g == keys::kUp) {
        ++vr;
      } else if (g == keys::kDown) {
        --vr;
      } else if (g == keys::kEnter) {
        clk();
        g = "1";
        return;
      } else {
        break;
      }
      Voice->SetRate(vr);
      Voice->Speak("", SVSFPurgeBeforeSpeak);
      Voice->Speak(std::to_string(vr), SVSFlagsAsync);
    }
  }
}

void Form1::changevoice(int a) {
  clk();
  if (nov != 1) {
    stopspeech();
    openFiller();
    sbuf->SetPan(0);
    sbuf->SetFrequency(fq);
    clk();
    int answer = 2;
    for (;;) {
      clk();
      say2(names[a] + " do you wish to use this voice? ");
      Answer said = yesno(kVoicePlace, answer);
      if (said == Answer::Yes) break;
      if (said == Answer::Other) continue;
      sbuf->Play(DSBPLAY_LOOPING);
      ++nv;
      if (nv + 1 > nov) nv = 0;
      Voice = plat.NewSpVoice();
      Voice->SetVoice(nv);
      Voice->Speak(" ", SVSFDefault);
      sbuf->Stop();
    }
  }
  clk();
  g = "1";
}

}  // namespace quorble
