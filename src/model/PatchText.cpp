#include "model/PatchText.h"

#include "model/PathText.h"
#include "model/Product.h"
#include "notation/Compound.h"
#include "notation/Document.h"
#include "notation/Errors.h"
#include "notation/Writer.h"
#include "parameters/ParameterTable.h"
#include "parameters/ParameterText.h"

#include <utility>

namespace Model {

namespace {

void writeParameters(Stackbrace::Writer& writer, const Patch& patch) {
    const bool syncOn = Parameters::isOn(patch.value(Parameters::sync));
    writer.begin("parameters");
    for (int id = 0; id < Parameters::kCount; ++id) {
        std::string text = Parameters::valueToText(id, patch.value(id), syncOn, Parameters::TextForm::exact);
        writer.string(Parameters::kTable[static_cast<std::size_t>(id)].name,
                      Parameters::appendUnit(id, std::move(text)));
    }
    writer.end();
}

void checkFormat(std::int32_t format) {
    if (format < kPatchFormat) {
        throw PatchFormatError("Patch format is too old");
    }
    if (format > kPatchFormat) {
        throw PatchFormatError("Patch format is too new");
    }
}

// The structure that holds the patch, of a format that can be read.
Stackbrace::Structure patchStructure(const Stackbrace::Document& document) {
    const auto root = document.root().structure();
    const auto* element = root.find(kPatchKey);
    if (!element) {
        throw PatchFormatError("Invalid data format");
    }
    auto content = element->structure();
    checkFormat(content.at("format").integer());
    return content;
}

void readParameters(const Stackbrace::Structure& parameters, AtomicPatch& patch) {
    // The table has `sync` before `frameRate`, whose text it decides.
    for (int id = 0; id < Parameters::kCount; ++id) {
        const auto& record = Parameters::kTable[static_cast<std::size_t>(id)];
        const auto* element = parameters.find(record.name);
        const bool syncOn = Parameters::isOn(patch.value(Parameters::sync));
        const auto value = element ? Parameters::textToValue(id, element->string(), syncOn) : std::nullopt;
        patch.setValue(id, value.value_or(record.defaultValue));
    }
}

} // namespace

std::string writePatch(const Patch& patch, PatchForm form) {
    Stackbrace::Writer writer;
    writer.begin(kPatchKey);
    writer.value("format", std::to_string(kPatchFormat));
    if (form == PatchForm::full) {
        writer.string("name", patch.name());
        if (const auto path = patch.path(); !path.empty()) {
            writer.string("path", toUtf8(path));
        }
        writer.boolean("modified", patch.isModified());
    }
    writeParameters(writer, patch);
    writer.end();
    return writer.take();
}

AtomicPatch readPatch(std::string text, std::string sourceName) {
    const Stackbrace::Document document(std::move(text), std::move(sourceName));
    const auto content = patchStructure(document);
    AtomicPatch patch;
    if (const auto* path = content.find("path")) {
        patch.setPath(pathFromUtf8(path->string()));
    }
    if (const auto* name = content.find("name")) {
        patch.setName(name->string());
    }
    readParameters(content["parameters"].structure(), patch);
    const auto* modified = content.find("modified");
    if (modified && modified->boolean()) {
        patch.markModified();
    } else {
        patch.markSaved();
    }
    return patch;
}

bool isPatchText(std::string text) {
    try {
        const Stackbrace::Document document(std::move(text));
        patchStructure(document);
        return true;
    } catch (const PatchFormatError&) {
        return false;
    } catch (const Stackbrace::Exception&) {
        return false;
    }
}

} // namespace Model
