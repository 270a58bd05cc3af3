#include "picture.h"

#include <jpeglib.h>
#include <png.h>

#include <cerrno>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>

constexpr size_t MOST_PIXELS = size_t{1} << 28;

static bool setSize(Picture& picture, size_t width, size_t height, std::string& why)
{
    if (width == 0 || height == 0 || width > MOST_PIXELS / height) {
        why = "the picture is too large";
        return false;
    }
    picture.width = static_cast<int>(width);
    picture.height = static_cast<int>(height);
    picture.pixels.resize(4 * width * height);
    return true;
}

static bool decodePng(const unsigned char* bytes, size_t size, Picture& picture, std::string& why)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    bool good = png_image_begin_read_from_memory(&image, bytes, size) != 0;
    if (good) {
        image.format = PNG_FORMAT_RGBA;
        good = setSize(picture, image.width, image.height, why);
        if (good && png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr) == 0) {
            good = false;
            why = image.message;
        }
    } else {
        why = image.message;
    }
    png_image_free(&image);
    return good;
}

// ---- JPEG ----

struct JpegFault {
    jpeg_error_mgr base; // first, so that its address is that of the whole
    jmp_buf back;
    char why[JMSG_LENGTH_MAX];
};

static void failJpeg(j_common_ptr state)
{
    auto* fault = reinterpret_cast<JpegFault*>(state->err);
    state->err->format_message(state, fault->why);
    longjmp(fault->back, 1);
}

static void dropMessage(j_common_ptr)
{
}

// All that must outlive the jump comes from the caller.
static bool decodeJpegInto(jpeg_decompress_struct& state, JpegFault& fault, const unsigned char* bytes,
                           size_t size, Picture& picture, std::string& why)
{
    if (setjmp(fault.back) != 0) {
        why = fault.why;
        return false;
    }
    jpeg_create_decompress(&state);
    jpeg_mem_src(&state, bytes, size);
    jpeg_read_header(&state, TRUE);
    state.out_color_space = JCS_EXT_RGBA;
    jpeg_start_decompress(&state);
    if (!setSize(picture, state.output_width, state.output_height, why))
        return false;
    while (state.output_scanline < state.output_height) {
        unsigned char* row = picture.pixels.data() + size_t{4} * state.output_width * state.output_scanline;
        jpeg_read_scanlines(&state, &row, 1);
    }
    jpeg_finish_decompress(&state);
    return true;
}

static bool decodeJpeg(const unsigned char* bytes, size_t size, Picture& picture, std::string& why)
{
    jpeg_decompress_struct state = {};
    JpegFault fault = {};
    state.err = jpeg_std_error(&fault.base);
    fault.base.error_exit = failJpeg;
    fault.base.output_message = dropMessage;
    const bool good = decodeJpegInto(state, fault, bytes, size, picture, why);
    jpeg_destroy_decompress(&state);
    return good;
}

// ---- both ----

bool decodePicture(const unsigned char* bytes, size_t size, Picture& picture, std::string& why)
{
    if (size >= 8 && png_sig_cmp(bytes, 0, 8) == 0)
        return decodePng(bytes, size, picture, why);
    if (size >= 3 && memcmp(bytes, "\xff\xd8\xff", 3) == 0)
        return decodeJpeg(bytes, size, picture, why);
    why = "neither PNG nor JPEG";
    return false;
}

bool readPicture(const std::string& path, Picture& picture, std::string& why)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path.c_str(), "rb"), fclose);
    std::vector<unsigned char> bytes;
    unsigned char block[1 << 16];
    size_t n = 0;
    while (file != nullptr && (n = fread(block, 1, sizeof block, file.get())) > 0)
        bytes.insert(bytes.end(), block, block + n);
    if (file == nullptr || ferror(file.get()) != 0) {
        why = strerror(errno);
        return false;
    }
    return decodePicture(bytes.data(), bytes.size(), picture, why);
}

bool takePicture(const aiTexture& texture, Picture& picture, std::string& why)
{
    if (texture.mHeight == 0) // a file as it is, of mWidth bytes
        return decodePicture(reinterpret_cast<const unsigned char*>(texture.pcData), texture.mWidth, picture,
                             why);
    if (!setSize(picture, texture.mWidth, texture.mHeight, why))
        return false;
    for (size_t i = 0; i < picture.pixels.size() / 4; ++i) {
        const aiTexel& texel = texture.pcData[i];
        const unsigned char rgba[4] = {texel.r, texel.g, texel.b, texel.a};
        memcpy(&picture.pixels[4 * i], rgba, 4);
    }
    return true;
}
