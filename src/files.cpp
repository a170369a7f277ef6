// The data folder and everything kept in it: configuration, saved game, log.
#include <cmath>
#include <cstdio>
#include <optional>
#include <vector>

#include "file_names.h"
#include "gamestate.h"
#include "scoresheet.h"

namespace quorble {
namespace {

constexpr const char* kEol = "\r\n";

std::string FolderOf(const std::string& path) {
  const auto slash = path.rfind('/');
  return slash == std::string::npos ? std::string(".") : path.substr(0, slash);
}

std::string NumberLine(int n) { return nt(n) + " " + kEol; }

// A number as the game writes it, with blanks around; nothing when the text
// holds no whole number.
std::optional<int> ParseNumber(const std::string& text) {
  size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string::npos) return std::nullopt;
  size_t end = text.find_last_not_of(" \t\r\n") + 1;
  const std::string token = text.substr(begin, end - begin);
  char* stop = nullptr;
  const double value = std::strtod(token.c_str(), &stop);
  if (stop != token.c_str() + token.size() || !std::isfinite(value)) return std::nullopt;
  if (value != std::floor(value) || std::fabs(value) > 1e9) return std::nullopt;
  return static_cast<int>(value);
}

// The lines of a text file, with CR LF or LF ends; a last line end makes no
// empty line behind it.
std::vector<std::string> Lines(const std::string& content) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < content.size()) {
    size_t end = content.find_first_of("\r\n", start);
    if (end == std::string::npos) end = content.size();
    lines.push_back(content.substr(start, end - start));
    if (end < content.size() && content[end] == '\r' && end + 1 < content.size() &&
        content[end + 1] == '\n') {
      ++end;
    }
    start = end + 1;
  }
  return lines;
}

std::vector<std::string> Words(const std::string& content) {
  std::vector<std::string> words;
  size_t at = 0;
  while ((at = content.find_first_not_of(" \t\r\n,", at)) != std::string::npos) {
    const size_t end = content.find_first_of(" \t\r\n,", at);
    words.push_back(content.substr(at, end - at));
    at = end;
  }
  return words;
}

// The most a saved extra row may hold: a thousand extra scores on one sheet.
// The rules set no end to a game, since a turn on the extra row fills no
// other, but five alike comes about once in twenty turns, so this stands
// for some twenty thousand turns of one player: far beyond any game
// played, and small enough that no sum of a board can overflow.
constexpr int kMaxExtraRow = 100 * 1000;

// What a row of the board can hold: empty, or a score the dice can make.
bool ScoreFits(int row, int score) {
  if (score == -1) return true;
  if (score < 0) return false;
  if (row <= 6) return score <= 5 * row && score % row == 0;
  switch (row) {
    case 7:
    case 8: return score == 0 || (score >= 5 && score <= 30);
    case 9: return score == 0 || score == 25;
    case 10: return score == 0 || score == 30;
    case 11: return score == 0 || score == 40;
    case 12: return score >= 5 && score <= 30;
    case 13: return score == 0 || score == 50;
    default: return score % 100 == 0 && score <= kMaxExtraRow;
  }
}

std::string DateText(const Date& date) {
  char text[16];
  std::snprintf(text, sizeof text, "%02d-%02d-%04d", date.month % 100, date.day % 100,
                date.year % 10000);
  return text;
}

}  // namespace

std::string Form1::SpecialFolder(int pFolder) {
  return pFolder == 5 ? plat.DocumentsFolder() : std::string();
}

std::string Form1::join(const std::string& name) const { return dp + "/" + name; }

std::string Form1::locate(const std::string& path) {
  const std::string found = plat.FindName(path, false);
  return found.empty() ? found : FolderOf(path) + "/" + found;
}

bool Form1::present(const std::string& path) { return !locate(path).empty(); }

void Form1::getdp() {
  const std::string documents = SpecialFolder(5);
  pump();
  if (documents.empty()) {
    dp = plat.CurrentDirectory();
    return;
  }
  dp = documents + "/brindlesoft";
  // Found blind to case; its real name is the one to use.
  const std::string found = plat.FindName(dp, true);
  if (!found.empty()) {
    dp = documents + "/" + found;
    return;
  }
  plat.MakeDirectory(dp);
  pump();
}

void Form1::cotext() {
  if (present(join(file_names::kInstructions))) return;
  std::string source = locate(plat.CurrentDirectory() + "/" + file_names::kInstructions);
  // A game started from a menu stands in a folder without the text; the
  // copy that came with the program serves then. Not when the data folder is
  // the current folder: nothing of the program's own is put there.
  if (source.empty() && dp != plat.CurrentDirectory()) {
    source = locate(plat.ProgramFolder() + "/" + file_names::kInstructions);
  }
  if (source.empty()) return;
  const auto content = plat.ReadFile(source, kGameFileLimit);
  if (!content) return;
  std::string copy;
  auto lines = Lines(*content);
  if (lines.empty()) lines.emplace_back();
  for (const auto& line : lines) copy += line + kEol;
  plat.WriteFile(join(file_names::kInstructions), copy);
}

void Form1::readConfig(const std::string& path) {
  const std::string found = locate(path);
  if (found.empty()) return;
  const auto content = plat.ReadFile(found, kGameFileLimit);
  const auto words = content ? Words(*content) : std::vector<std::string>{};
  auto value = [&words](size_t i) {
    return i < words.size() ? ParseNumber(words[i]).value_or(0) : 0;
  };
  nv = value(0);
  vr = value(1);
  if (nv < 0 || nv > nov) nv = 0;
}

// A file found under another case is written over, not beside, so that
// no stale copy is left to be read instead of the new one.
std::string Form1::writePath(const std::string& name) {
  const std::string found = locate(join(name));
  return found.empty() ? join(name) : found;
}

void Form1::writeConfig() {
  plat.WriteFile(writePath(file_names::kConfig), NumberLine(pv[1]) + NumberLine(pr[1]));
}

bool Form1::writeSave() {
  // An unreadable saved game that couldn't be set aside is never replaced.
  if (keepSave) return false;
  std::string text = NumberLine(nop) + NumberLine(pup) + NumberLine(g2p) + NumberLine(nfin);
  for (int i = 1; i <= nop; ++i) {
    text += names[i] + kEol + NumberLine(fin[i]) + NumberLine(pv[i]) + NumberLine(pr[i]);
    for (int s = 1; s <= g2p; ++s) {
      for (int row = 1; row <= kRows; ++row) text += NumberLine(sheet[i][row][s]);
    }
  }
  // Which players the computer plays, one bit each from player 1 up; a game
  // of people alone keeps the file exactly as it always was.
  int computerBits = 0;
  for (int i = 1; i <= nop; ++i) computerBits |= cpu[i] == 1 ? 1 << (i - 1) : 0;
  if (computerBits != 0) text += NumberLine(computerBits);
  return plat.WriteFile(fpath, text);
}

namespace {

// A saved game as read from its lines, before it is trusted.
struct SavedGame {
  int nop = 0, pup = 0, g2p = 0, nfin = 0;
  Indexed<std::string, kMaxPlayers + 1> names;
  Indexed<int, kMaxPlayers + 1> fin{}, pv{}, pr{};
  Indexed<PlayerSheets, kMaxPlayers + 1> sheet{};
  int computerBits = 0;
};

// The lines of a saved game taken one at a time, each number checked as it
// is taken.
struct SaveLines {
  const std::vector<std::string>& lines;
  size_t at = 0;

  std::optional<int> Number() {
    return at < lines.size() ? ParseNumber(lines[at++]) : std::nullopt;
  }
  // The next number into `field` when it lies from `low` to `high`.
  bool Field(int& field, int low, int high) {
    const auto value = Number();
    if (!value || *value < low || *value > high) return false;
    field = *value;
    return true;
  }
};

// Player i's sheets; false for a score no dice make or a board that can't be.
bool ReadSheets(SaveLines& in, SavedGame& game, int i) {
  bool filled = true;
  for (int s = 1; s <= game.g2p; ++s) {
    for (int row = 1; row <= kRows; ++row) {
      const auto score = in.Number();
      if (!score || !ScoreFits(row, *score)) return false;
      game.sheet[i][row][s] = *score;
      filled = filled && (row == kRows || *score >= 0);
    }
    // An extra score needs five alike on its sheet first.
    if (game.sheet[i][kRows][s] > 0 && game.sheet[i][13][s] != 50) return false;
  }
  // A full board that isn't finished would refuse every row for ever.
  return filled == (game.fin[i] == 1);
}

bool ReadPlayer(SaveLines& in, SavedGame& game, int i) {
  game.names[i] = in.lines[in.at++];
  return in.Field(game.fin[i], 0, 1) && in.Field(game.pv[i], -1000000, 1000000) &&
         in.Field(game.pr[i], -1000000, 1000000) && ReadSheets(in, game, i);
}

std::optional<SavedGame> ParseSave(const std::vector<std::string>& lines) {
  SavedGame game;
  SaveLines in{lines};
  if (!in.Field(game.nop, 1, 9) || !in.Field(game.pup, 1, game.nop) ||
      !in.Field(game.g2p, 1, kSheets) || !in.Field(game.nfin, 0, game.nop - 1)) {
    return std::nullopt;
  }
  const auto expected = static_cast<size_t>(4 + game.nop * (4 + kRows * game.g2p));
  if (lines.size() != expected && lines.size() != expected + 1) return std::nullopt;
  int finished = 0;
  for (int i = 1; i <= game.nop; ++i) {
    if (!ReadPlayer(in, game, i)) return std::nullopt;
    finished += game.fin[i];
  }
  if (finished != game.nfin || game.fin[game.pup] != 0) return std::nullopt;
  // Set-up leaves at least one player to a person; a game of computers
  // alone was never begun by anyone.
  if (lines.size() > expected && !in.Field(game.computerBits, 1, (1 << game.nop) - 2)) {
    return std::nullopt;
  }
  return game;
}

}  // namespace

// Moves an unreadable saved game out of the way under the first free name,
// so an older one set aside is never replaced; false when no name is free.
bool Form1::setAside(const std::string& path) {
  constexpr int kNames = 100;
  for (int n = 0; n < kNames; ++n) {
    const std::string name =
        join(file_names::kBadSave + (n == 0 ? std::string() : "." + std::to_string(n)));
    if (plat.FindName(name, true).empty() && plat.RenameFile(path, name)) return true;
  }
  return false;
}

// Takes up the saved game at fpath. A file that can't be trusted is set
// aside, never deleted, and a new game begins.
bool Form1::readSave() {
  const std::string found = locate(fpath);
  const auto content = plat.ReadFile(found, kGameFileLimit);
  const auto game = content ? ParseSave(Lines(*content)) : std::nullopt;
  if (!game) {
    keepSave = !setAside(found);
    say(" The saved game could not be read. A new game begins. ");
    return false;
  }
  nop = game->nop;
  pup = game->pup;
  g2p = game->g2p;
  nfin = game->nfin;
  for (int i = 1; i <= nop; ++i) {
    names[i] = game->names[i];
    fin[i] = game->fin[i];
    pv[i] = game->pv[i] < 0 || game->pv[i] > nov ? 0 : game->pv[i];
    pr[i] = game->pr[i];
    cpu[i] = game->computerBits >> (i - 1) & 1;
    for (int s = 1; s <= g2p; ++s) {
      for (int row = 1; row <= kRows; ++row) sheet[i][row][s] = game->sheet[i][row][s];
    }
  }
  // A game with computer players goes on as it was begun, whatever the
  // program was started with.
  if (game->computerBits != 0 && companionMode == Companion::Off) {
    companionMode = Companion::Optimal;
  }
  return true;
}

void Form1::writeLog() {
  logged = 0;
  fpath = writePath(file_names::kLog);
  std::string text = "Quorble log file " + DateText(plat.Today()) + " By Tavi Orlund" + kEol + kEol;
  titles[13] = "quorble ";
  titles[14] = " extra quorble ";
  for (int i = 1; i <= nop; ++i) {
    int grand = 0;
    text += "Player #" + nt(i) + names[i] + kEol;
    for (int s = 1; s <= g2p; ++s) {
      if (g2p != 1) text += "score sheet #" + nt(s) + kEol;
      if (sheet[i][14][s] < 0) sheet[i][14][s] = 0;
      for (int row = 1; row <= kRows; ++row) {
        const int score = sheet[i][row][s];
        text += titles[row] + nt(score) + " point" + (score == 1 ? " " : "s ") + kEol;
      }
      const SheetSums sums = SumSheet(sheet[i], s);
      grand += sums.total;
      text += "top score" + nt(sums.top) + " points" + kEol;
      text += "bonus" + nt(sums.bonus) + " points" + kEol;
      text += "bottom score" + nt(sums.bottom) + " points" + kEol;
      text += "total score" + nt(sums.total) + " points" + kEol;
      text += std::string(" ") + kEol;
    }
    if (g2p != 1) text += "grand total" + nt(grand) + " points" + kEol;
    text += std::string(" ") + kEol;
  }
  logWritten = plat.WriteFile(fpath, text);
  titles[13] = "kwor-bul ";
  titles[14] = " extra kwor-bul ";
}

void Form1::appendWinner() {
  if (logWritten) plat.AppendFile(fpath, "The winner is" + msg + kEol);
}

}  // namespace quorble
