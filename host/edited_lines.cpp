#include "host/edited_lines.h"

#include <fmt/core.h>
#include <histedit.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "host/completion.h"

namespace host {

struct EditedLines::Impl {
  EditLine* editor = nullptr;
  History* history = nullptr;
  std::string prompt;
  Completer completer;
};

namespace {

constexpr int kRemembered = 1000;  // lines

// The library keeps one pointer for its caller.
template <typename Owner>
Owner& ownerOf(EditLine* editor) {
  void* owner = nullptr;
  el_get(editor, EL_CLIENTDATA, &owner);
  return *static_cast<Owner*>(owner);
}

// Bytes beyond ASCII are letters only in a locale that says so.
void readTypedLetters() {
  const char* locale = std::setlocale(LC_CTYPE, "");
  if (locale == nullptr || std::string_view(locale) == "C" || std::string_view(locale) == "POSIX")
    std::setlocale(LC_CTYPE, "C.UTF-8");
}

// The library deletes characters, not bytes.
int charactersOf(const std::string& utf8) {
  return static_cast<int>(std::count_if(
      utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

void list(const std::vector<std::string>& choices) {
  constexpr std::size_t kMost = 40;
  std::string text = "\n";
  for (std::size_t i = 0; i < choices.size() && i < kMost; ++i) text += choices[i] + "\n";
  if (choices.size() > kMost) text += fmt::format("... and {} more\n", choices.size() - kMost);
  std::fputs(text.c_str(), stdout);
}

// What is left of the cursor becomes all that its completions share; when they share no more, they are
// listed.
unsigned char completed(EditLine* editor, const Completer& completer) {
  const LineInfo* info = el_line(editor);
  const std::string typed(info->buffer, info->cursor);
  const std::vector<std::string> choices = completer ? completer(typed) : std::vector<std::string>{};
  if (choices.empty()) return CC_REFRESH_BEEP;
  const std::string shared = sharedBeginning(choices);
  if (shared.size() <= typed.size() && choices.size() > 1) {
    list(choices);
    return CC_REDISPLAY;
  }
  if (!typed.empty()) el_deletestr(editor, charactersOf(typed));
  return el_insertstr(editor, shared.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
}

}  // namespace

bool EditedLines::arePossible() {
  const char* terminal = std::getenv("TERM");
  const std::string_view kind = terminal == nullptr ? "" : terminal;
  return isatty(STDIN_FILENO) != 0 && isatty(STDOUT_FILENO) != 0 && !kind.empty() && kind != "dumb";
}

EditedLines::EditedLines() : impl_(std::make_unique<Impl>()) {
  readTypedLetters();
  impl_->editor = el_init("tavmap", stdin, stdout, stderr);
  impl_->history = history_init();
  if (impl_->editor == nullptr || impl_->history == nullptr)
    throw std::runtime_error("cannot edit lines at this terminal; set TERM=dumb to do without");
  HistEvent event;
  history(impl_->history, &event, H_SETSIZE, kRemembered);
  history(impl_->history, &event, H_SETUNIQUE, 1);
  el_set(impl_->editor, EL_CLIENTDATA, impl_.get());
  el_set(impl_->editor, EL_EDITOR, "emacs");
  el_set(impl_->editor, EL_SIGNAL, 1);  // Ctrl-C leaves the terminal as it was
  el_set(impl_->editor, EL_HIST, history, impl_->history);
  el_set(
      impl_->editor, EL_PROMPT, +[](EditLine* editor) { return ownerOf<Impl>(editor).prompt.data(); });
  el_set(
      impl_->editor, EL_ADDFN, "tavmap-complete", "Complete the line",
      +[](EditLine* editor, int) { return completed(editor, ownerOf<Impl>(editor).completer); });
  el_set(impl_->editor, EL_BIND, "^I", "tavmap-complete", nullptr);
  el_source(impl_->editor, nullptr);
}

EditedLines::~EditedLines() {
  if (impl_->editor != nullptr) el_end(impl_->editor);
  if (impl_->history != nullptr) history_end(impl_->history);
}

bool EditedLines::read(const std::string& prompt, const Completer& completer, std::string& line) {
  impl_->prompt = prompt;
  impl_->completer = completer;
  el_set(impl_->editor, EL_PREP_TERM, 1);  // before the prompt is shown: a key typed at once is the editor's
  int bytes = 0;
  const char* typed = el_gets(impl_->editor, &bytes);
  if (typed == nullptr || bytes <= 0) {
    std::fputs("\n", stdout);
    std::fflush(stdout);
    return false;
  }
  line.assign(typed, static_cast<std::size_t>(bytes));
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.pop_back();
  HistEvent event;
  if (!line.empty()) history(impl_->history, &event, H_ENTER, line.c_str());
  return true;
}

}  // namespace host
