// Specifications of images, films and fonts, made into what they ask for and drawn.
#include "images/ImageError.h"
#include "images/ImageLibrary.h"
#include "notation/Errors.h"
#include "zekt/Errors.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

Images::ImageLibrary& library() {
    static Images::ImageLibrary kept; // knows the plug-in's own pictures and fonts
    return kept;
}

template <class Action>
void allowingErrors(Action action) {
    try {
        action();
    } catch (const Images::ImageError&) {
    } catch (const Stackbrace::Exception&) {
    } catch (const ZEKT::Exception&) {
    } catch (const Drawing::SurfaceError&) {
    } catch (const Drawing::ColourError&) {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Stackbrace::Document document(std::string(reinterpret_cast<const char*>(data), size));
    Drawing::Surface surface(64, 48);
    const Drawing::IntRect clip = {3, 2, 50, 40};
    allowingErrors([&] {
        const auto image = library().image(Images::readImageSpecification(document.root()), 1.0);
        image->draw(surface.view(), clip, -3, 4, {.opacity = 200});
    });
    allowingErrors([&] {
        const auto film = library().film(Images::readFilmSpecification(document.root()), 1.5);
        film.draw(surface.view(), clip, 5, 5, film.frames() / 2.0 - 0.4);
    });
    allowingErrors([&] {
        const auto font = library().font(Images::readFontSpecification(document.root()), 1.0);
        font->draw(surface.view(), clip, 4.3, 30.0, u"A0\u00E9 \u4E00");
    });
    library().clear();
    return 0;
}
