// velkor_helpgen: writes the help pages whose tables come from the compiler.
//   velkor_helpgen TEMPLATE_FOLDER OUTPUT_FOLDER
// reads objects.html.in and props.html.in and writes objects.html and props.html, line breaks kept as the
// templates have them.
#include "platform/text_file.h"
#include "tools/help_tables.h"

#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: velkor_helpgen TEMPLATE_FOLDER OUTPUT_FOLDER\n";
        return 2;
    }
    const std::filesystem::path templates = argv[1];
    const std::filesystem::path output = argv[2];
    struct Page {
        const char* Name;       // the page written
        std::string (*Table)(); // its table
    };
    const Page pages[] = {{"objects.html", &velkor::ObjectTypesTable},
                          {"props.html", &velkor::ObjectPropertiesTable}};
    try {
        std::filesystem::create_directories(output);
        for (const Page& page : pages) {
            const std::filesystem::path source = templates / (std::string(page.Name) + ".in");
            const std::vector<std::uint8_t> bytes = velkor::ReadFileBytes(source);
            const std::string text(bytes.begin(), bytes.end());
            velkor::WriteFileAtomic(output / page.Name, velkor::FillHelpTemplate(text, page.Table()));
        }
    } catch (const std::exception& e) {
        std::cerr << "velkor_helpgen: " << e.what() << '\n';
        return 1;
    }
    return 0;
}
