#include "tool/Commands.h"

#include "notation/Compound.h"
#include "notation/Document.h"
#include "notation/Numbers.h"
#include "notation/Quoting.h"
#include "tool/TextFile.h"

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Tool {

namespace {

using Stackbrace::Document;

// Texts of the notation are bytes, which JSON has none of: bytes above printable ASCII stand as the
// characters of the same numbers.
std::string json(std::string_view bytes) {
    std::string text = "\"";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            text += '\\';
            text += c;
        } else if (byte < 0x20 || byte > 0x7E) {
            text += fmt::format("\\u{:04x}", byte);
        } else {
            text += c;
        }
    }
    return text += '"';
}

std::string joined(const std::vector<std::string>& items) {
    std::string text;
    for (const std::string& item : items) {
        text += (text.empty() ? "" : ",") + item;
    }
    return text;
}

void printElements(bool ok, const std::vector<std::string>& elements) {
    fmt::print("{{\"ok\":{},\"elements\":[{}]}}\n", ok, joined(elements));
}

void list(const Document& document) {
    const auto list = Stackbrace::readList(document.root());
    std::vector<std::string> elements;
    for (const auto& element : list) {
        elements.push_back(json(element.text()));
    }
    printElements(list.complete(), elements);
    document.root().list(); // throws where reading stopped
}

void structure(const Document& document) {
    const auto structure = Stackbrace::readStructure(document.root());
    std::vector<std::string> elements;
    for (const auto& [key, value] : structure) {
        elements.push_back("[" + json(key) + "," + json(value.text()) + "]");
    }
    printElements(structure.complete(), elements);
    document.root().structure();
}

// Elements carry no line end behind them, as files do.
std::string_view numberText(const Document& document) {
    std::string_view text = document.text();
    while (text.ends_with('\n') || text.ends_with('\r')) {
        text.remove_suffix(1);
    }
    return text;
}

void unquote(const Document& document) {
    fmt::print("{}\n", document.root().string());
}

void integer(const Document& document) {
    fmt::print("{}\n", Stackbrace::toInt32(numberText(document)));
}

void float32(const Document& document) {
    fmt::print("{}\n", Stackbrace::toFloat32(numberText(document)));
}

void float64(const Document& document) {
    fmt::print("{}\n", Stackbrace::toFloat64(numberText(document)));
}

void boolean(const Document& document) {
    fmt::print("{}\n", document.root().boolean());
}

struct Reading {
    const char* name;
    const char* help;
    void (*print)(const Document&);
};

constexpr Reading kReadings[] = {
    {"list", "Splits a list into its elements, as JSON", list},
    {"struct", "Splits a structure into keys and elements, as JSON", structure},
    {"unquote", "Prints what a string stands for", unquote},
    {"integer", "Converts to a 32-bit integer", integer},
    {"float", "Converts to a 32-bit float", float32},
    {"double", "Converts to a 64-bit float", float64},
    {"bool", "Reads true or false", boolean},
};

void addFileCommand(CLI::App& parent, const char* name, const char* help,
                    const std::function<void(const std::string&)>& run) {
    const auto file = std::make_shared<std::string>();
    auto* const command = parent.add_subcommand(name, help);
    command->add_option("FILE", *file, "A file, or - for standard input")->required();
    command->callback([file, run] { run(*file); });
}

} // namespace

void addStackbraceCommand(CLI::App& program) {
    auto* const command = program.add_subcommand("stackbrace", "Reads texts in the Stackbrace notation");
    command->require_subcommand(1);
    for (const Reading& reading : kReadings) {
        addFileCommand(*command, reading.name, reading.help, [&reading](const std::string& file) {
            reading.print(Document(readTextFile(file), sourceName(file)));
        });
    }
    addFileCommand(*command, "quote", "Prints a text as a string literal", [](const std::string& file) {
        fmt::print("{}\n", Stackbrace::quote(readTextFile(file)));
    });
}

} // namespace Tool
