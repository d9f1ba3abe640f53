#include "style.h"

#include <unistd.h>

#include <fmt/color.h>
#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>

#include "common/status.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library
namespace {

bool g_colour[3] = {false, false, false};  // by file descriptor: -, stdout, stderr

// Read before any thread starts; tarvctl never changes its environment.
bool terminal_wants_colour(int fd) {
    const char* term = std::getenv("TERM");                      // NOLINT(concurrency-mt-unsafe)
    const char* no_color = std::getenv("NO_COLOR");             // NOLINT(concurrency-mt-unsafe)
    const bool no_colour = no_color != nullptr && *no_color != '\0';  // set but empty does not count
    return isatty(fd) != 0 && !no_colour && term != nullptr && std::string_view(term) != "dumb";
}

}  // namespace

void choose_colour(std::string_view mode) {
    for (int fd : {1, 2}) {
        if (mode == "always")
            g_colour[fd] = true;
        else if (mode == "never")
            g_colour[fd] = false;
        else
            g_colour[fd] = terminal_wants_colour(fd);
    }
}

std::string paint(const std::FILE* stream, Tone tone, std::string_view text) {
    const int fd = stream == stdout ? 1 : stream == stderr ? 2 : 0;
    if (!g_colour[fd]) return std::string(text);
    switch (tone) {
        case Tone::Heading: return fmt::format(fmt::emphasis::bold, "{}", text);
        case Tone::Good: return fmt::format(fg(fmt::terminal_color::green), "{}", text);
        case Tone::Bad: return fmt::format(fg(fmt::terminal_color::red) | fmt::emphasis::bold, "{}", text);
        case Tone::Note: return fmt::format(fg(fmt::terminal_color::yellow), "{}", text);
    }
    return std::string(text);
}

Table::Table(std::vector<std::string> heading) : heading_(std::move(heading)) {
    for (const std::string& h : heading_) widths_.push_back(h.size());
}

void Table::add(std::vector<std::string> row) {
    row.resize(heading_.size());
    for (std::size_t i = 0; i < row.size(); ++i) widths_[i] = std::max(widths_[i], row[i].size());
    rows_.push_back(std::move(row));
}

std::string Table::line(const std::vector<std::string>& cells) const {
    std::string text;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i > 0) text += "  ";
        text += cells[i];
        if (i + 1 < cells.size()) text.append(widths_[i] - cells[i].size(), ' ');
    }
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text;
}

std::string Table::heading_line() const { return line(heading_); }

std::string Table::row_line(std::size_t i) const { return line(rows_.at(i)); }

void Table::print(std::FILE* out, std::string_view indent) const {
    fmt::print(out, "{}{}\n", indent, paint(out, Tone::Heading, heading_line()));
    for (const auto& row : rows_) fmt::print(out, "{}{}\n", indent, line(row));
}

void print_json(const Json& j) {
    Json doc = {{"schema", kJsonSchema}};
    for (const auto& member : j.items())
        if (member.key() != "schema") doc[member.key()] = member.value();
    fmt::print("{}\n", doc.dump(2));
}

}  // namespace tarvctl
