// The folders of the library form layers: a file includes its own layer and those below it, nothing above.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace
{

namespace fs = std::filesystem;

struct Include {
    fs::path from; // relative to the source tree
    std::string to;
};

const fs::path& sourceDirectory()
{
    static const fs::path directory = ONDREL_SOURCE_DIR;
    return directory;
}

// All includes of the library's own headers in the files below `folder`.
std::vector<Include> includesBelow(const std::string& folder)
{
    static const std::regex form(R"(^\s*#\s*include\s*[<"](ondrel/[^>"]+|[^>"/]+_p\.h)[>"])");
    std::vector<Include> includes;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(sourceDirectory() / folder)) {
        const std::string extension = entry.path().extension().string();
        if (extension != ".h" && extension != ".cpp")
            continue;
        std::ifstream file(entry.path());
        for (std::string line; std::getline(file, line);)
            if (std::smatch match; std::regex_search(line, match, form))
                includes.push_back({fs::relative(entry.path(), sourceDirectory()), match[1]});
    }
    return includes;
}

bool isPrivate(const std::string& header)
{
    const std::string ending = "_p.h";
    return header.size() > ending.size() && header.compare(header.size() - ending.size(), ending.size(), ending) == 0;
}

// Folder of a path such as "ondrel/core/image.h", or an empty text for "ondrel/ondrel_export.h".
std::string layerOf(const fs::path& path)
{
    const std::vector<fs::path> parts(path.begin(), path.end());
    return parts.size() > 2 ? parts[1].string() : std::string();
}

// What each folder may include besides itself. The gradients are the one pixel operation that may use colour.
std::set<std::string> allowed(const fs::path& file)
{
    static const std::map<std::string, std::set<std::string>> below = {
        {"core", {}},
        {"work", {"core"}},
        {"color", {"core"}},
        {"pixel", {"core"}},
        {"resources", {"core", "pixel", "color"}},
        {"widgets", {"core", "work", "color", "pixel"}},
        {"nodes", {"core", "work", "color", "pixel", "resources", "widgets"}},
    };
    const auto found = below.find(layerOf(file));
    if (found == below.end())
        return {};
    std::set<std::string> folders = found->second;
    folders.insert({layerOf(file), std::string()});
    if (file.filename().string().rfind("gradient", 0) == 0 && layerOf(file) == "pixel")
        folders.insert("color");
    return folders;
}

TEST(Architecture, EveryFolderIncludesOnlyItselfAndLowerFolders)
{
    const std::vector<Include> includes = includesBelow("ondrel");
    ASSERT_GT(includes.size(), 50u);
    for (const Include& include : includes)
        if (include.to.rfind("ondrel/", 0) == 0) {
            EXPECT_EQ(allowed(include.from).count(layerOf(include.to)), 1u)
                << include.from << " includes " << include.to;
        }
}

TEST(Architecture, PublicHeadersIncludeNoPrivateOne)
{
    for (const Include& include : includesBelow("ondrel")) {
        if (include.from.extension() == ".h" && !isPrivate(include.from.string())) {
            EXPECT_FALSE(isPrivate(include.to)) << include.from << " includes " << include.to;
        }
    }
}

TEST(Architecture, ExamplesIncludeNoPrivateHeader)
{
    const std::vector<Include> includes = includesBelow("examples");
    ASSERT_FALSE(includes.empty());
    for (const Include& include : includes)
        EXPECT_FALSE(isPrivate(include.to)) << include.from << " includes " << include.to;
}

} // namespace
