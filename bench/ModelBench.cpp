// The notation beside nlohmann-json's DOM on the same content: a tree of the kind that editor layouts and
// banks are, with as many levels, keys, numbers and strings. "All levels" turns every string and number of
// every level into its value, as the DOM reader does.
#include "notation/Compound.h"
#include "notation/Document.h"
#include "notation/Numbers.h"
#include "notation/Writer.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <random>
#include <string>

using nlohmann::json;
using Tree = nlohmann::ordered_json; // keys stand in the texts in no order, as people write them

namespace {

Tree makeTree(std::mt19937& random, int depth) {
    static constexpr const char* kKeys[] = {"type",   "bounds", "action", "params",  "variable", "text",
                                            "offset", "font",   "image",  "visible", "color",    "items"};
    static constexpr const char* kTexts[] = {
        "button",          "Frame Rate",     "params.frameRate",
        "Change \"this\"", "ovs:knob-large", "a somewhat longer text, as hints are: \t%s"};
    Tree tree = Tree::object();
    tree["bounds"] = {static_cast<int>(random() % 470), static_cast<int>(random() % 320), 34, 16.25};
    for (int i = 0; i < 6; ++i) {
        const char* key = kKeys[random() % std::size(kKeys)];
        switch (random() % 4) {
        case 0:
            tree[key] = static_cast<double>(random() % 10000) / 16;
            break;
        case 1:
            tree[key] = random() % 2 == 0;
            break;
        default:
            tree[key] = kTexts[random() % std::size(kTexts)];
            break;
        }
    }
    for (int i = 0; depth > 0 && i < 4; ++i) {
        tree["views"].push_back(makeTree(random, depth - 1));
    }
    return tree;
}

const Tree& tree() {
    static const Tree instance = [] {
        std::mt19937 random(7);
        return makeTree(random, 6);
    }();
    return instance;
}

void write(Stackbrace::Writer& writer, const Tree& value, const std::string* key) {
    const auto layout = value.is_array() && !value.empty() && !value[0].is_object()
                            ? Stackbrace::Layout::inLine
                            : Stackbrace::Layout::lines;
    if (value.is_structured()) {
        key ? writer.begin(*key, layout) : writer.begin(layout);
        for (auto item = value.begin(); item != value.end(); ++item) {
            write(writer, *item, value.is_object() ? &item.key() : nullptr);
        }
        writer.end();
    } else if (value.is_string()) {
        const auto& text = value.get_ref<const std::string&>();
        key ? writer.string(*key, text) : writer.string(text);
    } else {
        const std::string text = value.is_number_float()
                                     ? Stackbrace::numberText(value.get<float>())
                                     : (value.is_boolean() ? (value.get<bool>() ? "true" : "false")
                                                           : std::to_string(value.get<int>()));
        key ? writer.value(*key, text) : writer.value(text);
    }
}

const std::string& notationText() {
    static const std::string text = [] {
        Stackbrace::Writer writer;
        write(writer, tree(), nullptr);
        return writer.take();
    }();
    return text;
}

const std::string& jsonText() {
    static const std::string text = tree().dump(1, '\t');
    return text;
}

struct Sum {
    double numbers = 0;
    std::size_t bytes = 0;
};

void readAll(const Stackbrace::Element& element, Sum& sum) {
    const char first = element.empty() ? '\0' : element.raw().front();
    if (first == '{') {
        // As a consumer does, the bench knows what a compound is: those in line are lists of numbers, those
        // that hold compounds lists of structures, the others structures.
        const char* inside = element.raw().data() + 1;
        bool list = *inside == ' ';
        while (*inside == '\n' || *inside == '\t') {
            ++inside;
        }
        list = list || *inside == '{';
        if (list) {
            for (const auto& item : Stackbrace::readList(element)) {
                readAll(item, sum);
            }
        } else {
            for (const auto& [key, value] : Stackbrace::readStructure(element)) {
                sum.bytes += std::string(key).size();
                readAll(value, sum);
            }
        }
    } else if (first == '"') {
        sum.bytes += element.string().size();
    } else if (first == 't' || first == 'f') {
        sum.bytes += element.boolean() ? 1 : 0;
    } else {
        sum.numbers += element.float64();
    }
}

void setRate(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes) * state.iterations());
    state.counters["size"] = static_cast<double>(bytes);
}

void notationReadAllLevels(benchmark::State& state) {
    const std::string& text = notationText();
    for (auto _ : state) {
        const Stackbrace::Document document(text);
        Sum sum;
        readAll(document.root(), sum);
        benchmark::DoNotOptimize(sum);
    }
    setRate(state, text.size());
}
BENCHMARK(notationReadAllLevels);

void notationReadOneLevel(benchmark::State& state) {
    const std::string& text = notationText();
    for (auto _ : state) {
        const Stackbrace::Document document(text);
        benchmark::DoNotOptimize(Stackbrace::readStructure(document.root()).size());
    }
    setRate(state, text.size());
}
BENCHMARK(notationReadOneLevel);

void jsonRead(benchmark::State& state) {
    const std::string& text = jsonText();
    for (auto _ : state) {
        benchmark::DoNotOptimize(json::parse(text));
    }
    setRate(state, text.size());
}
BENCHMARK(jsonRead);

void notationWrite(benchmark::State& state) {
    std::size_t size = 0;
    for (auto _ : state) {
        Stackbrace::Writer writer;
        write(writer, tree(), nullptr);
        const std::string text = writer.take();
        size = text.size();
        benchmark::DoNotOptimize(text.data());
    }
    setRate(state, size);
}
BENCHMARK(notationWrite);

void jsonWrite(benchmark::State& state) {
    std::size_t size = 0;
    for (auto _ : state) {
        const std::string text = tree().dump(1, '\t');
        size = text.size();
        benchmark::DoNotOptimize(text.data());
    }
    setRate(state, size);
}
BENCHMARK(jsonWrite);

} // namespace
