#include "support/operations.h"

#include <algorithm>
#include <clocale>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace tarv::testing {
namespace {

// Each input where its operations start, once prepared; its row.
std::vector<fuzz::Input> g_ops;
std::vector<Operation> g_rows;

void replay(Scratch& s, const Operation& op) {
    const Replay& r = corpus()[op.a];
    std::uint64_t answers = 14695981039346656037u;  // FNV-1a offset basis
    fuzz::answers = &answers;
    fuzz::run_ops(*r.target, pSharedData, g_ops[op.a], fuzz::kAttaches | fuzz::kWrites);
    fuzz::answers = nullptr;
    s.result(answers);
}

}  // namespace

const std::vector<Replay>& corpus() {
    static const std::vector<Replay> inputs = [] {
        std::vector<Replay> out;
        for (const fuzz::Target* t : fuzz::all_targets) {
            std::vector<std::filesystem::path> files;
            for (const auto& e : std::filesystem::directory_iterator(std::string(TARV_FUZZ_CORPUS "/") + t->name))
                files.push_back(e.path());
            std::sort(files.begin(), files.end());
            for (const auto& f : files) {
                std::ifstream in(f, std::ios::binary);
                out.push_back({t, std::string(t->name) + "/" + f.filename().string(),
                               {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()}});
            }
        }
        return out;
    }();
    return inputs;
}

void populate_region(std::uint8_t*) {
    g_ops.clear();
    g_rows.clear();
    for (std::uint32_t i = 0; i < corpus().size(); ++i) {
        const Replay& r = corpus()[i];
        g_ops.emplace_back(r.bytes.data(), r.bytes.size());
        std::uint8_t* region = nullptr;
        if (r.target->prepare(g_ops.back(), region))
            g_rows.push_back({r.target->name, r.name.c_str(), OperationKind::Read, replay, i});
    }
    std::setlocale(LC_NUMERIC, "C");
}

std::span<const Operation> operations() { return g_rows; }

std::uint64_t run_row(const Operation& op, Scratch& scratch) {
    scratch.begin_row();
    op.run(scratch, op);
    return scratch.digest();
}

std::string row_name(const Operation& op) { return std::string(op.function) + ": " + op.variant; }

}  // namespace tarv::testing
