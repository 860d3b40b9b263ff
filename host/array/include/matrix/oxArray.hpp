// The host's array library: N-d arrays of every language class, as the interpreter
// hands them to builtins. Callers go through the functions below; the most frequent
// queries read the header inline (matrix/oxArrayLayout.hpp).
#pragma once

#include <fl/ustring.hpp>

#include <complex>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

// The host's class enumeration. Ids from 18 up belong to class-object classes.
enum oxClassID : std::int32_t {
    oxUNKNOWN_CLASS = 0,
    oxCELL_CLASS = 1,
    oxSTRUCT_CLASS = 2,
    oxLOGICAL_CLASS = 3,
    oxCHAR_CLASS = 4,
    oxVOID_CLASS = 5,
    oxDOUBLE_CLASS = 6,
    oxSINGLE_CLASS = 7,
    oxINT8_CLASS = 8,
    oxUINT8_CLASS = 9,
    oxINT16_CLASS = 10,
    oxUINT16_CLASS = 11,
    oxINT32_CLASS = 12,
    oxUINT32_CLASS = 13,
    oxINT64_CLASS = 14,
    oxUINT64_CLASS = 15,
    oxFUNCTION_CLASS = 16,
    oxOPAQUE_CLASS = 17,
    oxFIRST_OBJECT_CLASS = 18,
};

enum oxComplexity : std::int32_t { oxREAL = 0, oxCOMPLEX = 1 };

struct oxArray;

namespace matrix {

using Dims = std::span<const std::size_t>;

// What the host can represent: rejectUnsupportedShape and rejectUnsupportedClassId
// refuse anything beyond these.
inline constexpr std::size_t MAX_DIMENSIONS = 32;
inline constexpr std::int32_t MAX_CLASS_ID = 65535;

// Raised by the rejection functions and by creation with impossible dimensions.
class ShapeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};
class ClassIdError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// --- queries (a null handle raises std::logic_error) ---
inline oxClassID getClassID(const oxArray* a);
inline std::size_t getNumberOfDimensions(const oxArray* a); // at least 2
inline Dims getDimensions(const oxArray* a);                // completes opaque dimensions first
inline std::size_t getNumberOfElements(const oxArray* a);
inline bool isEmpty(const oxArray* a);
inline bool isScalar(const oxArray* a);
inline bool isComplex(const oxArray* a);      // both complex bits of the header set
inline bool isSparse(const oxArray* a);
bool isSharedData(const oxArray* a);   // data shared with another array
bool isTemporary(const oxArray* a);    // may be reused as an output
bool isTwoDimensional(const oxArray* a);
bool isOrdinaryStorage(const oxArray* a); // the two storage-kind bits are not both set
// Marks the data as kept in a foreign storage kind (both storage-kind bits), which
// readers that need ordinary contiguous storage refuse.
void setForeignStorage(oxArray* a, bool foreign);
bool hasOpaqueDimensions(const oxArray* a);
void completeDimensions(const oxArray* a);
std::size_t getElementSize(oxClassID classId); // bytes of one real element; 0 for non-numeric
std::uint32_t getReferenceCount(const oxArray* a);

// Numeric, logical and char data: contiguous, column-major; complex data interleaved.
inline void* getData(oxArray* a);
inline const void* getData(const oxArray* a);
template <class T> T* getTypedData(oxArray* a) { return static_cast<T*>(getData(a)); }
template <class T> const T* getTypedData(const oxArray* a) { return static_cast<const T*>(getData(a)); }

// --- rejection: throw ShapeError / ClassIdError for what the host cannot represent ---
void rejectUnsupportedShape(const oxArray* a);
void rejectUnsupportedClassId(oxClassID classId);

// --- ownership ---
oxArray* addReference(oxArray* a);
void clearTemporary(oxArray* a);
void setTemporary(oxArray* a, bool temporary);
void destroyArray(const oxArray* a); // drops one reference; frees at zero; null is ignored

namespace detail {
// Uninitialised numeric, logical or char array.
oxArray* do_create_uninitnumeric(Dims dims, oxClassID classId, oxComplexity complexity);
struct oxDestroy_deleter {
    void operator()(const oxArray* a) const { destroyArray(a); }
};
} // namespace detail

using ArrayPtr = std::unique_ptr<oxArray, detail::oxDestroy_deleter>;

// --- convenience creation for hosts, tests and tools ---
template <class T> oxArray* createScalar(T value);
oxArray* createCharArray(Dims dims, std::u16string_view codeUnits); // column-major
oxArray* createCharRow(std::u16string_view text);
// Sparse arrays carry their class, shape and flags only; getData yields null, as it
// does for every array without numeric data. Arrays that store no elements here
// accept any dimensions; rejectUnsupportedShape refuses the ones too large to count.
oxArray* createSparseDouble(std::size_t rows, std::size_t cols, bool complex);
oxArray* createCell(Dims dims);
oxArray* createStruct(Dims dims, std::vector<std::string> fieldNames);
oxArray* createFunctionHandle(std::string name);
oxArray* createOpaque(Dims dims);
// A class-object array holding a shared payload (a host string, an LxeObject, ...).
oxArray* createObject(oxClassID classId, Dims dims, std::shared_ptr<void> payload);
std::shared_ptr<void> getObjectPayload(const oxArray* a);
// A numeric array whose dimensions are kept opaque until completeDimensions, or any
// query that needs them, completes them (once, safely from several threads).
oxArray* createWithOpaqueDimensions(Dims dims, oxClassID classId, oxComplexity complexity);
oxArray* duplicateArray(const oxArray* a); // deep copy, new array not temporary
// A second array over the same numeric data (no copy); both are marked shared-data, so
// neither may be reused as an output in place.
oxArray* createSharedDataCopy(oxArray* a);

// --- elements of cell, struct and function-handle arrays ---
const oxArray* getCell(const oxArray* cell, std::size_t index); // null for an empty cell
// Takes over one reference of the element, even when it throws for a bad index.
void setCell(oxArray* cell, std::size_t index, oxArray* element);
const std::vector<std::string>& getFieldNames(const oxArray* structArray);
const std::string& getFunctionName(const oxArray* functionHandle);

// --- warnings ---
using WarningHandler = std::function<void(const fl::ustring&)>;
void handleWarning(const fl::ustring& message);
// Returns the previous handler; an empty handler reinstates the default, which writes
// "Warning: " and the text in UTF-8 to standard error.
WarningHandler setWarningHandler(WarningHandler handler);

// While in scope, every warning raised on this thread is first offered to the callback
// (a callable bool(const fl::ustring&) that outlives the capture); when it returns true
// the warning is consumed and the handler never sees it. Captures nest: the innermost
// one is asked.
class WarningCapture;

namespace detail {
// The innermost capture of this thread. Initial-exec and inline: a capture is made around
// every checked builtin call, so it must cost a few stores until a warning arrives.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local WarningCapture* innermostCapture;
} // namespace detail

class WarningCapture {
public:
    template <class Callback>
    explicit WarningCapture(const Callback& callback) noexcept
        : WarningCapture(&callback, [](const void* target, const fl::ustring& message) {
              return (*static_cast<const Callback*>(target))(message);
          }) {}
    // A capture that offers each warning to Handler(target, message), a function of an
    // object that outlives the capture: the object is all it keeps, so that no callable
    // need be built beside it.
    template <auto Handler, class Target>
    static WarningCapture calling(const Target& target) noexcept {
        return WarningCapture(&target, [](const void* object, const fl::ustring& message) -> bool {
            return Handler(*static_cast<const Target*>(object), message);
        });
    }
    ~WarningCapture() { detail::innermostCapture = previous_; }
    WarningCapture(const WarningCapture&) = delete;
    WarningCapture& operator=(const WarningCapture&) = delete;

private:
    using Trampoline = bool (*)(const void* target, const fl::ustring& message);
    WarningCapture(const void* target, Trampoline trampoline) noexcept
        : target_(target), trampoline_(trampoline), previous_(detail::innermostCapture) {
        detail::innermostCapture = this;
    }
    friend void handleWarning(const fl::ustring& message);

    const void* target_;
    Trampoline trampoline_;
    WarningCapture* previous_;
};

} // namespace matrix

#include <matrix/oxArrayLayout.hpp>
