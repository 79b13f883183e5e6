// `vessa._guard`: what the engine needs from C to keep the user's code within
// bounds, where Python alone can't promise it.
//
// A stop the user's code can't catch. A C trace function, put on the running
// thread from the watchdog's thread, raises in every line and instruction of
// the user's frames until the engine releases it. CPython takes a Python trace
// function away once it raises, so code that catches the stop would run on
// untraced; a C trace function stays, and the handler's first instruction
// raises again.
//
// A memory budget. Python's object and memory allocators are wrapped (as
// CPython allows after start-up: each call goes on to the allocator that was
// there). While a run is counted, the bytes its thread holds are added up:
// blocks over pymalloc's small-request size by their own size, small objects
// by the arenas pymalloc takes for them. A block that would take the run past
// its budget is refused, as if memory had run out, and the engine hears of it
// at the next instruction through a pending call. Once past it, blocks small
// enough for the engine to stop the run and tell the user are let through.
#include <Python.h>
#include <frameobject.h>

#include <pybind11/pybind11.h>

#include <unordered_map>

namespace py = pybind11;

namespace {

// -- the stop ------------------------------------------------------------------

// What is raised, and in which frames. Set while a stop is on; one at a time.
struct Stop {
    PyObject* type = nullptr;     // owned
    PyObject* message = nullptr;  // owned
    PyObject* isUsers = nullptr;  // owned: callable(code) -> bool
    PyObject* verdicts = nullptr; // owned: {code: bool}, asked once per code
};
Stop stop;

void clearStop() {
    Py_CLEAR(stop.type);
    Py_CLEAR(stop.message);
    Py_CLEAR(stop.isUsers);
    Py_CLEAR(stop.verdicts);
}

// 1: a frame of the user's code; 0: not; -1: can't tell yet (the question
// failed, e.g. at the recursion limit), asked again at the next event.
int isUsersFrame(PyFrameObject* frame) {
    PyObject* code = reinterpret_cast<PyObject*>(PyFrame_GetCode(frame));
    int result = -1;
    PyObject* known = PyDict_GetItemWithError(stop.verdicts, code);
    if (known != nullptr) {
        result = known == Py_True ? 1 : 0;
    } else if (!PyErr_Occurred()) {
        PyObject* answer = PyObject_CallOneArg(stop.isUsers, code);
        if (answer != nullptr) {
            result = PyObject_IsTrue(answer);
            Py_DECREF(answer);
            if (result >= 0 && PyDict_SetItem(stop.verdicts, code, result ? Py_True : Py_False))
                result = -1;
        }
    }
    if (result < 0)
        PyErr_Clear();
    Py_DECREF(code);
    return result;
}

void traceEveryInstruction(PyFrameObject* frame) {
    if (PyObject_SetAttrString(reinterpret_cast<PyObject*>(frame), "f_trace_opcodes", Py_True))
        PyErr_Clear();
}

int raiseInUsersFrames(PyObject*, PyFrameObject* frame, int what, PyObject*) {
    if (what != PyTrace_CALL && what != PyTrace_LINE && what != PyTrace_OPCODE)
        return 0;
    // Never at an instruction without a line (a handler's set-up): the user
    // is told the line.
    if (stop.type == nullptr || PyFrame_GetLineNumber(frame) < 1 || isUsersFrame(frame) != 1)
        return 0;
    // A handler in this frame that catches the stop runs no instruction of its own.
    traceEveryInstruction(frame);
    PyErr_SetObject(stop.type, stop.message);
    return -1;
}

PyThreadState* threadState(unsigned long threadId) {
    PyInterpreterState* interpreter = PyThreadState_GetInterpreter(PyThreadState_Get());
    for (PyThreadState* t = PyInterpreterState_ThreadHead(interpreter); t != nullptr;
         t = PyThreadState_Next(t)) {
        if (t->thread_id == threadId)
            return t;
    }
    return nullptr;
}

void traceUsersFramesOf(PyThreadState* thread) {
    PyFrameObject* frame = PyThreadState_GetFrame(thread);
    while (frame != nullptr) {
        if (isUsersFrame(frame) == 1)
            traceEveryInstruction(frame);
        PyFrameObject* back = PyFrame_GetBack(frame);
        Py_DECREF(frame);
        frame = back;
    }
}

bool stopThread(unsigned long threadId, const py::object& type, const py::object& message,
                const py::object& isUsers) {
    PyThreadState* thread = threadState(threadId);
    if (thread == nullptr)
        return false;
    clearStop();
    stop.type = type.inc_ref().ptr();
    stop.message = message.inc_ref().ptr();
    stop.isUsers = isUsers.inc_ref().ptr();
    stop.verdicts = PyDict_New();
    if (stop.verdicts == nullptr || _PyEval_SetTrace(thread, raiseInUsersFrames, nullptr) < 0) {
        clearStop();
        throw py::error_already_set();
    }
    traceUsersFramesOf(thread);
    return true;
}

void release() {
    // Only the stop is taken off; a debugger's trace function stays.
    if (PyThreadState_Get()->c_tracefunc == raiseInUsersFrames)
        PyEval_SetTrace(nullptr, nullptr);
    clearStop();
}

// -- the memory budget -----------------------------------------------------------

// pymalloc serves requests up to this size from its arenas.
constexpr size_t kSmallRequest = 512;
// Once the budget is exceeded, what the engine may still take to stop the run.
constexpr size_t kRoomToStop = 64 * 1024;

struct Budget {
    PyMemAllocatorEx mem{}; // the allocators wrapped
    PyMemAllocatorEx object{};
    PyObjectArenaAllocator arena{};
    bool counting = false;
    unsigned long thread = 0; // the run's thread: other threads are not counted
    bool exceeded = false;
    long long limit = 0; // bytes
    long long held = 0;  // bytes the run holds; below 0 when it freed older memory
    std::unordered_map<void*, size_t> blocks; // blocks over kSmallRequest made while counting
    PyObject* onExceeded = nullptr;           // owned; called as a pending call
};
Budget budget;

int callOnExceeded(void*) {
    if (budget.onExceeded != nullptr) {
        PyObject* result = PyObject_CallNoArgs(budget.onExceeded);
        if (result == nullptr)
            PyErr_WriteUnraisable(budget.onExceeded);
        Py_XDECREF(result);
    }
    return 0;
}

void noteExceeded() {
    if (!budget.exceeded) {
        budget.exceeded = true;
        Py_AddPendingCall(callOnExceeded, nullptr);
    }
}

// Whether this thread's requests are counted now.
bool counted() {
    return budget.counting && PyThread_get_thread_ident() == budget.thread;
}

// True when `more` bytes would take the run past its budget.
bool refuse(size_t more) {
    if (budget.held + static_cast<long long>(more) <= budget.limit)
        return false;
    const bool alreadyExceeded = budget.exceeded;
    noteExceeded();
    return !alreadyExceeded || more >= kRoomToStop;
}

void remember(void* block, size_t size) {
    try {
        budget.blocks[block] = size;
        budget.held += static_cast<long long>(size);
    } catch (...) {
        // A block that can't be remembered is not counted.
    }
}

void forget(void* block) {
    const auto found = budget.blocks.find(block);
    if (found != budget.blocks.end()) {
        budget.held -= static_cast<long long>(found->second);
        budget.blocks.erase(found);
    }
}

PyMemAllocatorEx* wrapped(void* ctx) {
    return static_cast<PyMemAllocatorEx*>(ctx);
}

void* countedMalloc(void* ctx, size_t size) {
    PyMemAllocatorEx* inner = wrapped(ctx);
    if (size <= kSmallRequest || !counted())
        return inner->malloc(inner->ctx, size);
    if (refuse(size))
        return nullptr;
    void* block = inner->malloc(inner->ctx, size);
    if (block != nullptr)
        remember(block, size);
    return block;
}

void* countedCalloc(void* ctx, size_t count, size_t size) {
    PyMemAllocatorEx* inner = wrapped(ctx);
    if (size == 0 || count > PY_SSIZE_T_MAX / size || count * size <= kSmallRequest || !counted())
        return inner->calloc(inner->ctx, count, size);
    if (refuse(count * size))
        return nullptr;
    void* block = inner->calloc(inner->ctx, count, size);
    if (block != nullptr)
        remember(block, count * size);
    return block;
}

void* countedRealloc(void* ctx, void* old, size_t size) {
    PyMemAllocatorEx* inner = wrapped(ctx);
    if (!counted())
        return inner->realloc(inner->ctx, old, size);
    const auto found = old != nullptr ? budget.blocks.find(old) : budget.blocks.end();
    const size_t before = found != budget.blocks.end() ? found->second : 0;
    if (found == budget.blocks.end() && size <= kSmallRequest)
        return inner->realloc(inner->ctx, old, size);
    if (size > before && refuse(size - before))
        return nullptr;
    void* block = inner->realloc(inner->ctx, old, size);
    if (block == nullptr)
        return nullptr; // the old block is as it was
    forget(old);
    remember(block, size);
    return block;
}

void countedFree(void* ctx, void* block) {
    PyMemAllocatorEx* inner = wrapped(ctx);
    if (budget.counting && block != nullptr && !budget.blocks.empty())
        forget(block);
    inner->free(inner->ctx, block);
}

void* countedArenaAlloc(void*, size_t size) {
    void* arena = budget.arena.alloc(budget.arena.ctx, size);
    // Refusing an arena would only send small objects to the raw allocator:
    // an arena past the budget is noted, and the engine stops the run.
    if (arena != nullptr && counted()) {
        budget.held += static_cast<long long>(size);
        if (budget.held > budget.limit)
            noteExceeded();
    }
    return arena;
}

void countedArenaFree(void*, void* arena, size_t size) {
    if (counted())
        budget.held -= static_cast<long long>(size);
    budget.arena.free(budget.arena.ctx, arena, size);
}

void wrapAllocators() {
    PyMem_GetAllocator(PYMEM_DOMAIN_MEM, &budget.mem);
    PyMem_GetAllocator(PYMEM_DOMAIN_OBJ, &budget.object);
    PyObject_GetArenaAllocator(&budget.arena);
    PyMemAllocatorEx mem{&budget.mem, countedMalloc, countedCalloc, countedRealloc, countedFree};
    PyMemAllocatorEx object{&budget.object, countedMalloc, countedCalloc, countedRealloc,
                            countedFree};
    PyObjectArenaAllocator arena{nullptr, countedArenaAlloc, countedArenaFree};
    PyMem_SetAllocator(PYMEM_DOMAIN_MEM, &mem);
    PyMem_SetAllocator(PYMEM_DOMAIN_OBJ, &object);
    PyObject_SetArenaAllocator(&arena);
}

void beginCounting(long long limit, const py::object& onExceeded) {
    budget.blocks.clear();
    budget.held = 0;
    budget.exceeded = false;
    budget.limit = limit;
    budget.thread = PyThread_get_thread_ident();
    Py_XSETREF(budget.onExceeded, onExceeded.inc_ref().ptr());
    budget.counting = true;
}

bool endCounting() {
    budget.counting = false;
    budget.blocks.clear();
    Py_CLEAR(budget.onExceeded);
    return budget.exceeded;
}

// -- where the user's code stands ----------------------------------------------

// The innermost frame now running whose code was compiled under a file name in tags, as
// (code, offset of its instruction); None when there is none. Python can walk the stack
// itself, but every frame's code it reads there is announced to the audit hooks, and the
// engine asks this at every animation a world makes.
py::object innermostFrameOf(const py::object& tags) {
    PyFrameObject* frame = PyEval_GetFrame();
    Py_XINCREF(frame);
    while (frame != nullptr) {
        PyCodeObject* code = PyFrame_GetCode(frame);
        const int found = PySequence_Contains(tags.ptr(), code->co_filename);
        if (found != 0) {
            const int offset = PyFrame_GetLasti(frame);
            Py_DECREF(frame);
            auto owned = py::reinterpret_steal<py::object>(reinterpret_cast<PyObject*>(code));
            if (found < 0)
                throw py::error_already_set();
            return py::make_tuple(owned, offset);
        }
        Py_DECREF(code);
        PyFrameObject* back = PyFrame_GetBack(frame);
        Py_DECREF(frame);
        frame = back;
    }
    return py::none();
}

} // namespace

PYBIND11_MODULE(_guard, m) {
    m.doc() = "Keeps the user's code of a Vessa47 world within bounds: a stop it can't catch "
              "and a memory budget.";
    wrapAllocators();

    m.def("stop_thread", &stopThread, py::arg("thread_id"), py::arg("exception_type"),
          py::arg("message"), py::arg("is_users"),
          "From another thread: raise exception_type(message) at every line and instruction "
          "of the user's frames (is_users(code) -> bool) in that thread until release(). "
          "False when there is no such thread.");
    m.def("release", &release, "In the stopped thread: end the stop.");
    m.def("begin_counting", &beginCounting, py::arg("limit"), py::arg("on_exceeded"),
          "Counts what Python allocates in this thread from now on against limit bytes; "
          "on_exceeded() runs at the next instruction once a request was refused.");
    m.def("end_counting", &endCounting, "Stops counting; True when the budget was exceeded.");
    m.def("innermost_frame_of", &innermostFrameOf, py::arg("tags"),
          "(code, offset of its instruction) of the innermost frame running code compiled "
          "under a file name in tags; None.");
    m.def(
        "held", [] { return budget.held; }, "Bytes counted as held since begin_counting.");
}
