// usage: readbound FILE
//
// The bound for any reader of text in this program: reads the file in blocks and calls
// std::from_chars on every line, nothing else.

#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

int main(int argc, char* argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: readbound FILE\n");
        return 1;
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(argv[1], "rb"),
                                                               std::fclose);
    if (file == nullptr) {
        std::perror(argv[1]);
        return 1;
    }
    std::setvbuf(file.get(), nullptr, _IONBF, 0); // the block is the buffer
    std::vector<char> block(256 * 1024);
    std::size_t available = 0;
    double sum = 0.0;
    std::size_t lines = 0;
    for (;;) {
        const std::size_t got =
            std::fread(block.data() + available, 1, block.size() - available, file.get());
        if (got == 0)
            break;
        available += got;
        const char* first = block.data();
        const char* last = first + available;
        while (const auto* end = static_cast<const char*>(
                   std::memchr(first, '\n', static_cast<std::size_t>(last - first)))) {
            double value = 0.0;
            if (std::from_chars(first, end, value).ec == std::errc())
                sum += value;
            ++lines;
            first = end + 1;
        }
        available = static_cast<std::size_t>(last - first);
        std::memmove(block.data(), first, available);
    }
    std::printf("%zu lines, sum %g\n", lines, sum);
    return 0;
}
