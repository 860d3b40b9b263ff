// Creation of arrays without numeric data (sparse, cell, struct, function handle,
// opaque, class-object), copies, and the element access of the container classes.
// Only arrays that store their elements here refuse dimensions whose element count
// overflows; the others accept any dimensions and leave the refusal to
// rejectUnsupportedShape, as a host must for huge sparse or object arrays.
#include "ArrayHeader.hpp"
#include "ClassTraits.hpp"

#include <cstring>

namespace matrix {
namespace detail {
namespace {

constexpr std::size_t SCALAR_DIMENSIONS[] = {1, 1};

oxArray* createWithExtras(Dims dims, oxClassID classId, std::uint32_t flags, std::unique_ptr<ArrayExtras> extras) {
    oxArray* array = allocateArray(dims, classId, flags, 0);
    array->data = nullptr;
    array->extras = extras.release();
    return array;
}

ArrayExtras& extrasOfClass(const oxArray* array, oxClassID classId, const char* function) {
    const oxArray& checked = checkedArray(array, function);
    if (checked.classId != classId || checked.extras == nullptr) {
        throw std::invalid_argument(std::string(function) + ": array of class " + std::to_string(checked.classId) +
                                    " where class " + std::to_string(classId) + " is required");
    }
    return *checked.extras;
}

std::unique_ptr<ArrayExtras> copyExtras(const ArrayExtras& source) {
    auto copy = std::make_unique<ArrayExtras>();
    copy->fieldNames = source.fieldNames;
    copy->functionName = source.functionName;
    copy->payload = source.payload;
    copy->cells.reserve(source.cells.size());
    for (const ArrayPtr& cell : source.cells) copy->cells.emplace_back(cell ? duplicateArray(cell.get()) : nullptr);
    return copy;
}

} // namespace
} // namespace detail

oxArray* createSparseDouble(std::size_t rows, std::size_t cols, bool complex) {
    const std::size_t dims[] = {rows, cols};
    const std::uint32_t flags = detail::flag::SPARSE | (complex ? detail::flag::COMPLEX : 0);
    return detail::createWithExtras(dims, oxDOUBLE_CLASS, flags, nullptr);
}

oxArray* createCell(Dims dims) {
    auto extras = std::make_unique<detail::ArrayExtras>();
    // A count whose element storage cannot even be sized is refused as numeric data is.
    std::size_t elements = 0;
    if (!detail::multiplyDimensions(dims, elements) || elements > extras->cells.max_size()) {
        throw detail::overflowError(dims);
    }
    extras->cells.resize(elements);
    return detail::createWithExtras(dims, oxCELL_CLASS, 0, std::move(extras));
}

oxArray* createStruct(Dims dims, std::vector<std::string> fieldNames) {
    auto extras = std::make_unique<detail::ArrayExtras>();
    extras->fieldNames = std::move(fieldNames);
    return detail::createWithExtras(dims, oxSTRUCT_CLASS, 0, std::move(extras));
}

oxArray* createFunctionHandle(std::string name) {
    auto extras = std::make_unique<detail::ArrayExtras>();
    extras->functionName = std::move(name);
    return detail::createWithExtras(detail::SCALAR_DIMENSIONS, oxFUNCTION_CLASS, 0, std::move(extras));
}

oxArray* createOpaque(Dims dims) { return detail::createWithExtras(dims, oxOPAQUE_CLASS, 0, nullptr); }

oxArray* createObject(oxClassID classId, Dims dims, std::shared_ptr<void> payload) {
    if (classId < oxFIRST_OBJECT_CLASS || classId > MAX_CLASS_ID) {
        throw ClassIdError("matrix::createObject: class " + std::to_string(classId) + " is not a class-object class");
    }
    auto extras = std::make_unique<detail::ArrayExtras>();
    extras->payload = std::move(payload);
    return detail::createWithExtras(dims, classId, 0, std::move(extras));
}

std::shared_ptr<void> getObjectPayload(const oxArray* a) {
    const oxArray& array = detail::checkedArray(a, "matrix::getObjectPayload");
    return array.extras != nullptr ? array.extras->payload : nullptr;
}

oxArray* duplicateArray(const oxArray* a) {
    const oxArray& source = detail::checkedArray(a, "matrix::duplicateArray");
    detail::ensureDimensions(source);
    constexpr std::uint32_t kept = detail::flag::COMPLEX | detail::flag::SPARSE | detail::flag::FOREIGN_STORAGE;
    const Dims dims(source.dimensions, source.numberOfDimensions);
    const std::size_t bytes = detail::dataBytes(source);
    std::unique_ptr<detail::ArrayExtras> extras;
    if (source.extras != nullptr) extras = detail::copyExtras(*source.extras);
    oxArray* copy = detail::allocateArray(dims, source.classId, source.flags.load(std::memory_order_relaxed) & kept, bytes);
    if (source.data == nullptr) {
        copy->data = nullptr;
    } else {
        std::memcpy(copy->data, source.data, bytes);
    }
    copy->extras = extras.release();
    return copy;
}

oxArray* createSharedDataCopy(oxArray* a) {
    oxArray& source = detail::checkedArray(a, "matrix::createSharedDataCopy");
    if (source.data == nullptr) {
        throw std::invalid_argument("matrix::createSharedDataCopy: class " + std::to_string(source.classId) +
                                    " holds no numeric data to share");
    }
    detail::ensureDimensions(source);
    auto extras = std::make_unique<detail::ArrayExtras>();
    constexpr std::uint32_t kept = detail::flag::COMPLEX | detail::flag::FOREIGN_STORAGE;
    const std::uint32_t flags = (source.flags.load(std::memory_order_relaxed) & kept) | detail::flag::SHARED_DATA;
    oxArray* copy = detail::allocateArray(Dims(source.dimensions, source.numberOfDimensions), source.classId, flags, 0);
    extras->dataOwner.reset(addReference(&source));
    copy->data = source.data;
    copy->extras = extras.release();
    source.flags.fetch_or(detail::flag::SHARED_DATA, std::memory_order_relaxed);
    return copy;
}

const oxArray* getCell(const oxArray* cell, std::size_t index) {
    const detail::ArrayExtras& extras = detail::extrasOfClass(cell, oxCELL_CLASS, "matrix::getCell");
    return extras.cells.at(index).get();
}

void setCell(oxArray* cell, std::size_t index, oxArray* element) {
    ArrayPtr owned(element);
    detail::ArrayExtras& extras = detail::extrasOfClass(cell, oxCELL_CLASS, "matrix::setCell");
    extras.cells.at(index) = std::move(owned);
}

const std::vector<std::string>& getFieldNames(const oxArray* structArray) {
    return detail::extrasOfClass(structArray, oxSTRUCT_CLASS, "matrix::getFieldNames").fieldNames;
}

const std::string& getFunctionName(const oxArray* functionHandle) {
    return detail::extrasOfClass(functionHandle, oxFUNCTION_CLASS, "matrix::getFunctionName").functionName;
}

} // namespace matrix
