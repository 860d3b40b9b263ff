#include "BufferClass.hpp"

#include <lxebuffer/Buffer.hpp>

#include <builtin/lxeobject/LxeObjectIndexing.hpp>
#include <matrix/ResultArrays.hpp>

#include <array>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace lxebuffer {

namespace {

std::span<const double> doublesIn(const oxArray* array) {
    if (matrix::getClassID(array) != oxDOUBLE_CLASS || matrix::isComplex(array)) {
        throw std::invalid_argument("buffer values must be real double arrays");
    }
    return {matrix::getTypedData<double>(array), matrix::getNumberOfElements(array)};
}

void requireArguments(int nrhs, int least, int most, const char* method) {
    if (nrhs < least || nrhs > most) {
        throw std::invalid_argument(std::string("wrong number of arguments to Buffer.") + method);
    }
}

// Buffer.create() or Buffer.create(values)
void create(int, oxArray** plhs, int nrhs, oxArray** prhs) {
    requireArguments(nrhs, 0, 1, "create");
    plhs[0] = Buffer::toOxArray(Buffer::create(nrhs == 1 ? doublesIn(prhs[0]) : std::span<const double>()));
}

// buffer.append(values)
void append(int, oxArray**, int nrhs, oxArray** prhs) {
    requireArguments(nrhs, 2, 2, "append");
    Buffer::fromOxArray(prhs[0])->append(doublesIn(prhs[1]));
}

// buffer.size()
void size(int, oxArray** plhs, int nrhs, oxArray** prhs) {
    requireArguments(nrhs, 1, 1, "size");
    plhs[0] = matrix::createScalar(static_cast<double>(Buffer::fromOxArray(prhs[0])->size()));
}

std::vector<double> valuesOf(int nrhs, oxArray** prhs, const char* method) {
    requireArguments(nrhs, 1, 1, method);
    return Buffer::fromOxArray(prhs[0])->values();
}

oxArray* rowOf(const std::vector<double>& elements) {
    oxArray* array = matrix::createUninitializedNumericArray({1, elements.size()}, oxDOUBLE_CLASS);
    std::copy(elements.begin(), elements.end(), matrix::getTypedData<double>(array));
    return array;
}

// display(buffer): how a session shows a buffer, "Buffer [1 2.5 3]".
void display(int, oxArray** plhs, int nrhs, oxArray** prhs) {
    std::ostringstream text;
    text << "Buffer [";
    const std::vector<double> elements = valuesOf(nrhs, prhs, "display");
    for (std::size_t i = 0; i < elements.size(); ++i) {
        text << (i == 0 ? "" : " ") << elements[i];
    }
    text << ']';
    plhs[0] = matrix::createCharRowFromUtf8(text.str());
}

// getProperty(buffer, name): buffer.size and buffer.values.
void getProperty(int, oxArray** plhs, int nrhs, oxArray** prhs) {
    requireArguments(nrhs, 2, 2, "getProperty");
    if (matrix::getClassID(prhs[1]) != oxCHAR_CLASS) {
        throw std::invalid_argument("a buffer property is named by a char row");
    }
    const char16_t* units = matrix::getTypedData<char16_t>(prhs[1]);
    const std::string name(units, units + matrix::getNumberOfElements(prhs[1]));
    const std::vector<double> elements = Buffer::fromOxArray(prhs[0])->values();
    if (name == "size") {
        plhs[0] = matrix::createScalar(static_cast<double>(elements.size()));
    } else if (name == "values") {
        plhs[0] = rowOf(elements);
    } else {
        throw std::invalid_argument("a buffer has no property '" + name + "': it has size and values");
    }
}

struct Method {
    const char* name;
    Ofh_ORVEX_fn* code;
    bool isStatic;
};

// buffer.values(): the elements as a row vector.
void values(int, oxArray** plhs, int nrhs, oxArray** prhs) { plhs[0] = rowOf(valuesOf(nrhs, prhs, "values")); }

// Buffer(values) is the constructor (a static method named as the class), like create.
constexpr std::array<Method, 7> METHODS{{
    {"create", &create, true},
    {"Buffer", &create, true},
    {"display", &display, false},
    {"getProperty", &getProperty, false},
    {"append", &append, false},
    {"size", &size, false},
    {"values", &values, false},
}};

} // namespace

void addBufferMethods(ocos::COSClass& cls) {
    using Velloc::builtin::lxeobject::getGuid;
    // The code of each method is filed under the identifier of (class, implementation).
    auto code = std::make_shared<std::map<std::string, Ofh_ORVEX_fn*>>();
    for (const Method& method : METHODS) {
        (*code)[getGuid(cls.getName(), method.name)] = method.code;
    }
    Velloc::builtin::lxeobject::setOfhFinder(
        cls.getName(), [code](const std::string& className, const std::string& implementation) -> Ofh_ORVEX_fn* {
            const auto found = code->find(getGuid(className, implementation));
            return found != code->end() ? found->second : nullptr;
        });
    for (const Method& method : METHODS) {
        Velloc::builtin::lxeobject::addMethod(&cls, method.name, method.name, {}, method.isStatic, false, false);
    }
}

} // namespace lxebuffer
