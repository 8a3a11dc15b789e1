// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "bench/core/allocation_count.h"
#include "core/mapping/keyboard_mapping.h"
#include "core/mapping/physical_layout_mapping.h"
#include "core/trigger/double_shift_detector.h"
#include "core/trigger/shift_event_interpreter.h"
#include "core/trigger/typed_text_buffer.h"

namespace kelvora {
namespace {

enum class Script : std::int64_t { latin, cyrillic };

void addRows(std::vector<PhysicalKeyPair>& pairs, std::u16string_view first,
             std::u16string_view second) {
    for (std::size_t key = 0; key < first.size(); ++key) {
        pairs.emplace_back(first.substr(key, 1), second.substr(key, 1));
    }
}

/// The letter rows, and as many pairs again as the modifier combinations of two layouts bring.
std::vector<PhysicalKeyPair> layoutPairs() {
    std::vector<PhysicalKeyPair> pairs;
    pairs.reserve(400);
    addRows(pairs, KeyboardMapping::unshiftedLatin, KeyboardMapping::unshiftedRussian);
    addRows(pairs, KeyboardMapping::shiftedLatin, KeyboardMapping::shiftedRussian);
    addRows(pairs, u"1234567890-= !@#$%^&*()_+", u"1234567890-= !\"№;%:?*()_+");
    for (char16_t unit = 0; pairs.size() < 400; ++unit) {
        const auto first = static_cast<char16_t>(u'\u00A1' + unit);
        const auto second = static_cast<char16_t>(u'\u2190' + unit);
        pairs.emplace_back(std::u16string_view(&first, 1), std::u16string_view(&second, 1), false);
    }
    return pairs;
}

std::u16string sample(Script script, std::size_t units) {
    const std::u16string_view sentence = script == Script::latin
                                             ? u"The quick brown fox; jumps over a lazy dog.\n"
                                             : u"Съешь ещё этих мягких булок, да выпей чаю.\n";
    std::u16string text;
    text.reserve(units);
    while (text.size() < units) {
        text.append(sentence.substr(0, units - text.size()));
    }
    return text;
}

void setBytes(benchmark::State& state, std::size_t units) {
    state.SetBytesProcessed(static_cast<std::int64_t>(units * sizeof(char16_t)) *
                            static_cast<std::int64_t>(state.iterations()));
}

std::vector<char16_t> anyTable() {
    std::vector<char16_t> table(65536);
    for (std::size_t unit = 0; unit < table.size(); ++unit) {
        table[unit] = static_cast<char16_t>(unit ^ 1);
    }
    return table;
}

/// The yardstick: one look-up a unit in a table of all units, into memory that is there already.
void bareLookup(benchmark::State& state) {
    const auto units = static_cast<std::size_t>(state.range(0)) / sizeof(char16_t);
    const std::u16string text = sample(Script{state.range(1)}, units);
    std::u16string result(units, 0);
    const std::vector<char16_t> table = anyTable();
    for (auto _ : state) {
        for (std::size_t i = 0; i < units; ++i) {
            result[i] = table[text[i]];
        }
        benchmark::DoNotOptimize(result.data());
        benchmark::ClobberMemory();
    }
    setBytes(state, units);
}

/// The same into new memory, as every conversion has to: what that costs beyond the look-ups is the
/// system's, which maps and clears large blocks anew each time.
void bareLookupIntoNewMemory(benchmark::State& state) {
    const auto units = static_cast<std::size_t>(state.range(0)) / sizeof(char16_t);
    const std::u16string text = sample(Script{state.range(1)}, units);
    const std::vector<char16_t> table = anyTable();
    for (auto _ : state) {
        const auto result = std::make_unique_for_overwrite<char16_t[]>(units);
        for (std::size_t i = 0; i < units; ++i) {
            result[i] = table[text[i]];
        }
        benchmark::DoNotOptimize(result.get());
        benchmark::ClobberMemory();
    }
    setBytes(state, units);
}

void convertString(benchmark::State& state) {
    const auto units = static_cast<std::size_t>(state.range(0)) / sizeof(char16_t);
    const std::u16string text = sample(Script{state.range(1)}, units);
    const PhysicalLayoutMapping mapping(layoutPairs());
    for (auto _ : state) {
        benchmark::DoNotOptimize(mapping.convertString(text, 0));
    }
    setBytes(state, units);
}

void textSizes(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"bytes", "script"});
    for (const std::int64_t bytes : {1 << 20, 1 << 23, 1 << 26}) {
        for (const Script script : {Script::latin, Script::cyrillic}) {
            bench->Args({bytes, static_cast<std::int64_t>(script)});
        }
    }
}

BENCHMARK(bareLookup)->Apply(textSizes);
BENCHMARK(bareLookupIntoNewMemory)->Apply(textSizes);
BENCHMARK(convertString)->Apply(textSizes);

void convertWord(benchmark::State& state) {
    const PhysicalLayoutMapping mapping(layoutPairs());
    const std::u16string word = u"ghtlcnfdbntm"; // twelve letters
    const std::size_t before = allocationCount();
    for (auto _ : state) {
        benchmark::DoNotOptimize(mapping.convertString(word, 0));
    }
    state.counters["allocations"] = benchmark::Counter(
        static_cast<double>(allocationCount() - before), benchmark::Counter::kAvgIterations);
}
BENCHMARK(convertWord);

void buildMapping(benchmark::State& state) {
    const std::vector<PhysicalKeyPair> pairs = layoutPairs();
    for (auto _ : state) {
        benchmark::DoNotOptimize(PhysicalLayoutMapping(pairs));
    }
    state.counters["pairs"] = static_cast<double>(pairs.size());
}
BENCHMARK(buildMapping);

void buildPairsAndMapping(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(PhysicalLayoutMapping(layoutPairs()));
    }
}
BENCHMARK(buildPairsAndMapping);

/// One letter typed and one Shift pressed and released between letters.
void keyPress(benchmark::State& state) {
    ShiftEventInterpreter interpreter;
    DoubleShiftDetector detector(0.5);
    TypedTextBuffer buffer;
    for (int i = 0; i < 300; ++i) {
        buffer.record(u"ф");
    }
    double time = 0;
    const std::size_t before = allocationCount();
    for (auto _ : state) {
        time += 0.1;
        const ModifierChange shift{ShiftEventInterpreter::leftShiftKeyCode, true, true};
        benchmark::DoNotOptimize(detector.process(interpreter.flagsChanged(shift), time));
        benchmark::DoNotOptimize(detector.process(HotkeyInput::otherKey, time));
        benchmark::DoNotOptimize(buffer.record(u"ф"));
    }
    state.counters["allocations"] = benchmark::Counter(
        static_cast<double>(allocationCount() - before), benchmark::Counter::kAvgIterations);
}
BENCHMARK(keyPress);

} // namespace
} // namespace kelvora
