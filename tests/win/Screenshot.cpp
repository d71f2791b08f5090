// Screenshots for people to look at: the window's pixels from the screen,
// written as a PNG with uncompressed deflate blocks (no library needed).
#include "WinTest.h"

#include <cstdint>
#include <vector>

namespace {

std::string g_folder = ".";

uint32_t Crc32(const uint8_t* data, size_t size, uint32_t crc = 0) {
    crc = ~crc;
    for (size_t i = 0; i < size; ++i) {
        crc ^= data[i];
        for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1)));
    }
    return ~crc;
}

void Put32(std::vector<uint8_t>* out, uint32_t v) {
    for (int shift = 24; shift >= 0; shift -= 8) out->push_back(uint8_t(v >> shift));
}

void Chunk(std::vector<uint8_t>* png, const char* type, const std::vector<uint8_t>& data) {
    Put32(png, uint32_t(data.size()));
    size_t start = png->size();
    png->insert(png->end(), type, type + 4);
    png->insert(png->end(), data.begin(), data.end());
    Put32(png, Crc32(png->data() + start, png->size() - start));
}

// rgb: height rows of width * 3 bytes, top row first.
std::vector<uint8_t> EncodePng(int width, int height, const std::vector<uint8_t>& rgb) {
    std::vector<uint8_t> raw;
    for (int y = 0; y < height; ++y) {
        raw.push_back(0);  // filter: none
        raw.insert(raw.end(), rgb.begin() + size_t(y) * width * 3,
                   rgb.begin() + size_t(y + 1) * width * 3);
    }
    std::vector<uint8_t> z = {0x78, 0x01};
    uint32_t a = 1, b = 0;
    for (uint8_t byte : raw) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    for (size_t pos = 0; pos < raw.size() || pos == 0;) {
        size_t n = std::min<size_t>(65535, raw.size() - pos);
        bool last = pos + n == raw.size();
        z.push_back(last ? 1 : 0);
        z.push_back(uint8_t(n));
        z.push_back(uint8_t(n >> 8));
        z.push_back(uint8_t(~n));
        z.push_back(uint8_t(~n >> 8));
        z.insert(z.end(), raw.begin() + pos, raw.begin() + pos + n);
        pos += n;
        if (last) break;
    }
    Put32(&z, (b << 16) | a);

    std::vector<uint8_t> png = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    std::vector<uint8_t> header;
    Put32(&header, uint32_t(width));
    Put32(&header, uint32_t(height));
    header.insert(header.end(), {8, 2, 0, 0, 0});  // 8-bit RGB
    Chunk(&png, "IHDR", header);
    Chunk(&png, "IDAT", z);
    Chunk(&png, "IEND", {});
    return png;
}

}  // namespace

void SetScreenshotFolder(const std::string& folder) { g_folder = folder; }

bool SaveScreenshot(HWND hwnd, const std::string& name) {
    SetWindowPos(hwnd, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_SHOWWINDOW);
    RedrawWindow(hwnd, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN |
                                             RDW_UPDATENOW);
    PumpMessages(300);  // let the X server catch up with the paint
    // The client area only: on Xvfb there is no window manager to draw a
    // caption, and Wine's PrintWindow leaves the controls out.
    RECT rect;
    GetClientRect(hwnd, &rect);
    MapWindowPoints(hwnd, nullptr, reinterpret_cast<POINT*>(&rect), 2);
    int width = rect.right - rect.left, height = rect.bottom - rect.top;
    if (width <= 0 || height <= 0) return false;

    HDC screen = GetDC(nullptr);
    HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;  // top-down
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    bool ok = false;
    if (bitmap) {
        HGDIOBJ old = SelectObject(memory, bitmap);
        BitBlt(memory, 0, 0, width, height, screen, rect.left, rect.top, SRCCOPY);
        GdiFlush();
        std::vector<uint8_t> rgb(size_t(width) * height * 3);
        const uint8_t* bgra = static_cast<const uint8_t*>(bits);
        for (size_t i = 0; i < size_t(width) * height; ++i) {
            rgb[i * 3] = bgra[i * 4 + 2];
            rgb[i * 3 + 1] = bgra[i * 4 + 1];
            rgb[i * 3 + 2] = bgra[i * 4];
        }
        SelectObject(memory, old);
        DeleteObject(bitmap);
        std::vector<uint8_t> png = EncodePng(width, height, rgb);
        std::string path = g_folder + "\\" + name + ".png";
        FILE* f = std::fopen(path.c_str(), "wb");
        if (f) {
            ok = std::fwrite(png.data(), 1, png.size(), f) == png.size();
            ok = std::fclose(f) == 0 && ok;
        }
        if (ok) std::printf("screenshot %s\n", path.c_str());
    }
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return ok;
}
