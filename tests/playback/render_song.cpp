// playback_render_song FILE.plm OUT.wav [FROM TO] [--count-in] [--metronome]: plays a music file through the built-in
// synthesizer on the virtual clock and writes what it sounds like, for listening to the
// scheduler's work (check with sox). Bars from 1.
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

#include "playback/fluidsynth_out.h"
#include "playback/offline_play.h"
#include "score/file_io.h"
#include "score/music_file.h"
#include "score/settings_store.h"

int main(int argc, char** argv) {
  using namespace plectaro;
  PlaybackOptions options;
  std::vector<std::string> args;
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--count-in") == 0) options.CountIn = true;
    else if (std::strcmp(argv[i], "--metronome") == 0) options.Metronome = true;
    else args.push_back(argv[i]);
  }
  if (args.size() != 2 && args.size() != 4) {
    std::cerr << "usage: playback_render_song FILE.plm OUT.wav [FROM TO] [--count-in] [--metronome]\n";
    return 2;
  }
  try {
    MemorySettingsStore settings;
    Document doc;
    if (OpenMusicFile(doc, args[0], settings) != OpenOutcome::Opened) {
      std::cerr << args[0] << ": not a music file\n";
      return 1;
    }
    const int last = static_cast<int>(doc.score.BarInfos.size()) - 1;
    const int from = args.size() == 4 ? std::stoi(args[2]) - 1 : 0;
    const int to = args.size() == 4 ? std::stoi(args[3]) - 1 : last;
    const RenderedSong song = RenderSong(doc.score, from, to, options, FindSoundFont(&settings));
    WriteWav16(args[1], song);
    std::cout << song.Messages << " messages, last at " << song.SongMs << " ms\n";
    return 0;
  } catch (const std::exception& e) {
    std::cerr << e.what() << "\n";
    return 1;
  }
}
