// Output conventions: colour only on a terminal (and never with NO_COLOR or
// --color never), aligned text tables, and JSON on standard output.
#ifndef TARVCTL_STYLE_H
#define TARVCTL_STYLE_H

#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "common/records.h"

namespace tarvctl {
using namespace tarvtool;  // the shared tool library

enum class Tone { Heading, Good, Bad, Note };

// Decides once, from --color (auto, always, never), whether standard output
// and standard error get colour.
void choose_colour(std::string_view mode);

// `text` in the tone's colour when `stream` has colour, else unchanged.
[[nodiscard]] std::string paint(const std::FILE* stream, Tone tone, std::string_view text);

// A text table: a heading row and rows of cells, printed left-aligned in
// columns two spaces apart, without trailing blanks.
class Table {
public:
    explicit Table(std::vector<std::string> heading);
    void add(std::vector<std::string> row);
    [[nodiscard]] bool empty() const noexcept { return rows_.empty(); }

    // Prints the heading and every row, each line after `indent`.
    void print(std::FILE* out, std::string_view indent = "") const;
    // The heading, or row i, formatted with the table's column widths.
    [[nodiscard]] std::string heading_line() const;
    [[nodiscard]] std::string row_line(std::size_t i) const;

private:
    [[nodiscard]] std::string line(const std::vector<std::string>& cells) const;

    std::vector<std::string> heading_;
    std::vector<std::vector<std::string>> rows_;
    std::vector<std::size_t> widths_;
};

// The version of the JSON documents and events tarvctl prints (docs/json.md).
inline constexpr int kJsonSchema = 1;

// The object j, pretty-printed after a first member "schema": kJsonSchema,
// and a newline on standard output.
void print_json(const Json& j);

}  // namespace tarvctl

#endif
