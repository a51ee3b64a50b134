// playback_render_song FILE.plm OUT.wav [FROM TO]: plays a music file through the built-in
// synthesizer on the virtual clock and writes what it sounds like, for listening to the
// scheduler's work (check with sox). Bars from 1.
#include <iostream>

#include "playback/fluidsynth_out.h"
#include "playback/offline_play.h"
#include "score/file_io.h"
#include "score/music_file.h"
#include "score/settings_store.h"

int main(int argc, char** argv) {
  using namespace plectaro;
  if (argc != 3 && argc != 5) {
    std::cerr << "usage: playback_render_song FILE.plm OUT.wav [FROM TO]\n";
    return 2;
  }
  try {
    MemorySettingsStore settings;
    Document doc;
    if (OpenMusicFile(doc, argv[1], settings) != OpenOutcome::Opened) {
      std::cerr << argv[1] << ": not a music file\n";
      return 1;
    }
    const int last = static_cast<int>(doc.score.BarInfos.size()) - 1;
    const int from = argc == 5 ? std::atoi(argv[3]) - 1 : 0;
    const int to = argc == 5 ? std::atoi(argv[4]) - 1 : last;
    const RenderedSong song = RenderSong(doc.score, from, to, {}, FindSoundFont(&settings));
    WriteWav16(argv[2], song);
    std::cout << song.Messages << " messages, last at " << song.SongMs << " ms\n";
    return 0;
  } catch (const std::exception& e) {
    std::cerr << e.what() << "\n";
    return 1;
  }
}
