// size, class and describe: builtins over host arrays of any class. describe has a
// default implementation that takes every call its variants do not.
#include "Broadcasting.hpp"
#include "SampleBuiltins.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <fl/i18n.hpp>
#include <matrix/ResultArrays.hpp>

#include <string>

namespace samplelib {

namespace {

using namespace Velloc::builtin::builtinreg;

oxArray* size(const oxArray* array) {
    const matrix::Dims dims = matrix::getDimensions(array);
    oxArray* out = matrix::createNumericArray({1, dims.size()}, oxDOUBLE_CLASS);
    double* data = matrix::getTypedData<double>(out);
    for (std::size_t i = 0; i < dims.size(); ++i) {
        data[i] = static_cast<double>(dims[i]);
    }
    return out;
}

std::string className(const oxArray* array) {
    static const char* const NAMES[] = {"unknown", "cell",   "struct", "logical", "char",   "void",
                                        "double",  "single", "int8",   "uint8",   "int16",  "uint16",
                                        "int32",   "uint32", "int64",  "uint64",  "function_handle", "opaque"};
    const oxClassID id = matrix::getClassID(array);
    if (id >= 0 && id < oxFIRST_OBJECT_CLASS) {
        return NAMES[id];
    }
    return id == 19 ? "string" : "object";
}

std::u16string describeText(std::u16string_view text) {
    return u"text of " + fl::i18n::utf8_to_ustring(std::to_string(text.size())) + u" characters";
}

// Anything else, with any number of arguments: one line per argument. The text is appended
// piece by piece; prepending literals to temporaries draws GCC 12's false -Wrestrict.
void describeDefault(int, oxArray** plhs, int nrhs, oxArray** prhs, const Velloc::builtin::BuiltinVariant&) {
    std::string text = nrhs == 0 ? "nothing" : "";
    for (int i = 0; i < nrhs; ++i) {
        text += i == 0 ? "a " : "; a ";
        text += sizeText(prhs[i]);
        text += ' ';
        text += className(prhs[i]);
        text += " value";
    }
    if (plhs != nullptr) {
        plhs[0] = matrix::createCharRow(fl::i18n::utf8_to_ustring(text));
    }
}

const BuiltinVariantLists& sizeLists() {
    static const BuiltinVariantLists lists{makeVariants<&size>("size")};
    return lists;
}

const BuiltinVariantLists& classLists() {
    static const BuiltinVariantLists lists{makeVariants<&className>("class")};
    return lists;
}

const BuiltinVariantLists& describeLists() {
    static const BuiltinVariantLists lists{makeVariants<&describeText>("describe")};
    return lists;
}

} // namespace

const BuiltinFcn& sizeBuiltin() {
    static const RegisteredBuiltin builtin("size", LIBRARY, "the dimensions of an array", sizeLists(),
                                           noDefaultImplementation("size"));
    return builtin;
}

const BuiltinFcn& classBuiltin() {
    static const RegisteredBuiltin builtin("class", LIBRARY, "the class name of an array", classLists(),
                                           noDefaultImplementation("class"));
    return builtin;
}

const BuiltinFcn& describeBuiltin() {
    static const RegisteredBuiltin builtin("describe", LIBRARY, "describes its arguments in words", describeLists(),
                                           defaultImplementation<&describeDefault>("describe"));
    return builtin;
}

} // namespace samplelib
