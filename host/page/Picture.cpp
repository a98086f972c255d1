#include "page/Picture.h"

#include "files/BmpWriter.h"

Picture halved(const Picture& picture) {
    Picture half(picture.width / 2, picture.height / 2);
    for (std::uint32_t y = 0; y < half.height; ++y) {
        for (std::uint32_t x = 0; x < half.width; ++x) {
            const std::uint8_t* upper = picture.at(2 * x, 2 * y);
            const std::uint8_t* lower = picture.at(2 * x, 2 * y + 1);
            for (std::size_t channel = 0; channel < 3; ++channel) {
                const int sum =
                    upper[channel] + upper[channel + 3] + lower[channel] + lower[channel + 3];
                half.at(x, y)[channel] = static_cast<std::uint8_t>((sum + 2) / 4);
            }
        }
    }
    return half;
}

void writePicture(const std::string& path, const Picture& picture) {
    BmpWriter file(path, picture.width, picture.height);
    for (std::uint32_t y = picture.height; y-- > 0;)
        file.appendRgb({picture.at(0, y), 3 * std::size_t{picture.width}});
    file.finish();
}
