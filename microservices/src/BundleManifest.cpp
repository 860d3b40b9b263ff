#include "BundleManifest.h"

#include <boost/json.hpp>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace cppmicroservices::detail {

namespace json = boost::json;

namespace {

const char* const MANIFEST_FILE = "manifest.json";

[[noreturn]] void failLocation(const std::string& location, const std::string& problem)
{
    throw std::runtime_error("cannot install bundles from '" + location + "': " + problem);
}

class ManifestReader {
public:
    explicit ManifestReader(const std::filesystem::path& directory)
        : directory_(directory), file_(directory / MANIFEST_FILE)
    {
    }

    BundleManifest read() const
    {
        const json::value document = parse(contents());
        if (!document.is_object()) {
            fail("the manifest must be a JSON object");
        }
        const json::object& top = document.get_object();
        const json::value* bundle = top.if_contains("bundle");
        if (bundle == nullptr || !bundle->is_object()) {
            fail(bundle == nullptr ? "the object \"bundle\" is missing" : "\"bundle\" must be a JSON object");
        }
        const json::object& entries = bundle->get_object();

        BundleManifest manifest;
        manifest.directory = directory_;
        manifest.symbolicName = requiredString(entries, "symbolic_name");
        if (!isIdentifier(manifest.symbolicName)) {
            fail("\"symbolic_name\" '" + manifest.symbolicName +
                 "' must start with a letter or '_' and hold only letters, digits and '_'");
        }
        manifest.library = directory_ / requiredString(entries, "library");
        if (!std::filesystem::is_regular_file(manifest.library)) {
            fail("the library '" + manifest.library.string() + "' does not exist");
        }
        if (const json::value* activator = entries.if_contains("activator")) {
            if (!activator->is_bool()) {
                fail("\"activator\" must be true or false");
            }
            manifest.hasActivator = activator->get_bool();
        }
        for (const auto& [key, value] : top) {
            if (key != "bundle") {
                manifest.headers[std::string(key)] = anyOf(value);
            }
        }
        for (const auto& [key, value] : entries) {
            if (manifest.headers.count(std::string(key)) != 0) {
                fail("the key \"" + std::string(key) + "\" appears both in \"bundle\" and at the top level");
            }
            manifest.headers[std::string(key)] = anyOf(value);
        }
        return manifest;
    }

private:
    [[noreturn]] void fail(const std::string& problem) const
    {
        throw std::runtime_error("invalid bundle manifest '" + file_.string() + "': " + problem);
    }

    std::string contents() const
    {
        std::ifstream in(file_, std::ios::binary);
        std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        if (!in && !in.eof()) {
            fail("the file cannot be read");
        }
        return text;
    }

    json::value parse(const std::string& text) const
    {
        json::stream_parser parser;
        json::error_code error;
        std::size_t offset = parser.write(text.data(), text.size(), error);
        if (!error) {
            parser.finish(error);
            offset = text.size();
        }
        if (error) {
            const std::string_view before(text.data(), offset);
            const auto line = 1 + std::count(before.begin(), before.end(), '\n');
            const auto newline = before.rfind('\n');
            const auto column = offset - (newline == std::string_view::npos ? 0 : newline + 1) + 1;
            fail("not valid JSON (" + error.message() + " at line " + std::to_string(line) + ", column " +
                 std::to_string(column) + ")");
        }
        return parser.release();
    }

    std::string requiredString(const json::object& entries, const char* key) const
    {
        const json::value* value = entries.if_contains(key);
        if (value == nullptr) {
            fail(std::string("\"") + key + "\" is missing from \"bundle\"");
        }
        if (!value->is_string() || value->get_string().empty()) {
            fail(std::string("\"") + key + "\" must be a non-empty string");
        }
        return std::string(value->get_string());
    }

    static bool isIdentifier(const std::string& name)
    {
        const auto isWordCharacter = [](char c) {
            return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
        };
        return !name.empty() && !(name.front() >= '0' && name.front() <= '9') &&
               std::all_of(name.begin(), name.end(), isWordCharacter);
    }

    // JSON values as the types other code reads headers as: integers as int when they fit
    // (else long long or unsigned long long), objects as ordered AnyMaps, arrays as
    // std::vector<Any>, null as an empty Any.
    static Any anyOf(const json::value& value)
    {
        switch (value.kind()) {
        case json::kind::bool_:
            return value.get_bool();
        case json::kind::int64: {
            const std::int64_t number = value.get_int64();
            if (number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max()) {
                return static_cast<int>(number);
            }
            return static_cast<long long>(number);
        }
        case json::kind::uint64:
            return static_cast<unsigned long long>(value.get_uint64());
        case json::kind::double_:
            return value.get_double();
        case json::kind::string:
            return std::string(value.get_string());
        case json::kind::array: {
            std::vector<Any> elements;
            for (const json::value& element : value.get_array()) {
                elements.push_back(anyOf(element));
            }
            return elements;
        }
        case json::kind::object: {
            AnyMap map(AnyMap::ORDERED_MAP);
            for (const auto& [key, member] : value.get_object()) {
                map[std::string(key)] = anyOf(member);
            }
            return map;
        }
        default:
            return Any();
        }
    }

    std::filesystem::path directory_;
    std::filesystem::path file_;
};

} // namespace

std::vector<std::filesystem::path> bundleDirectoriesAt(const std::string& location)
{
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::file_status status = fs::status(location, error);
    if (!fs::exists(status)) {
        failLocation(location, "no such file or directory");
    }
    if (!fs::is_directory(status)) {
        failLocation(location, "not a directory");
    }
    const fs::path directory = fs::canonical(location);
    if (fs::exists(directory / MANIFEST_FILE)) {
        return {directory};
    }
    std::vector<fs::path> bundles;
    for (const fs::directory_entry& entry : fs::directory_iterator(directory)) {
        if (entry.is_directory() && fs::exists(entry.path() / MANIFEST_FILE)) {
            bundles.push_back(entry.path());
        }
    }
    if (bundles.empty()) {
        failLocation(location, std::string("neither it nor any of its subdirectories holds a ") + MANIFEST_FILE);
    }
    std::sort(bundles.begin(), bundles.end());
    return bundles;
}

BundleManifest readBundleManifest(const std::filesystem::path& directory)
{
    return ManifestReader(directory).read();
}

} // namespace cppmicroservices::detail
