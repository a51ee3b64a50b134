// The questions of a batch verb that edits a score: messages go to stderr, a password comes
// from the command line, every other question is answered no.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "score/prompter.h"

namespace plectaro::cli {

class BatchPrompter : public Prompter {
 public:
  BatchPrompter(std::ostream& err, std::string verb, std::string password)
      : err_(err), verb_(std::move(verb)), password_(std::move(password)) {}
  void message(std::string_view text, std::string_view, MessageIcon) override {
    err_ << "plectaro-cli " << verb_ << ": " << text << "\n";
    ++messages;
  }
  Answer yesNoCancel(std::string_view, std::string_view) override { return Answer::Cancel; }
  bool yesNo(std::string_view, std::string_view) override { return false; }
  std::optional<std::string> textInput(std::string_view, std::string_view, bool secret) override {
    if (!secret || password_.empty()) return std::nullopt;
    return password_;
  }
  std::optional<std::string> openFileName(std::string_view, std::string_view, std::string_view) override {
    return std::nullopt;
  }
  std::optional<std::string> saveFileName(std::string_view, std::string_view, std::string_view) override {
    return std::nullopt;
  }
  int messages = 0;

 private:
  std::ostream& err_;
  std::string verb_;
  std::string password_;
};

}  // namespace plectaro::cli
