#include "Arrays.h"

#include <mutex>
#include <utility>
#include <vector>

namespace TessaryPython {
namespace {

/// Objects that were let go by threads without the interpreter's lock. To wait for the lock there could
/// be for ever, or end the thread, when the interpreter is about to go.
class LetGo {
public:
    void add(PyObject* object)
    {
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            m_objects.push_back(object);
        }
        // Where Python's own list is full, what is on it does the work.
        Py_AddPendingCall([](void* self) { return static_cast<LetGo*>(self)->release(); }, this);
    }

private:
    int release()
    {
        std::vector<PyObject*> objects;
        {
            const std::lock_guard<std::mutex> lock(m_mutex);
            objects.swap(m_objects);
        }
        for (PyObject* const object : objects)
            Py_DECREF(object);
        return 0;
    }

    std::mutex m_mutex;
    std::vector<PyObject*> m_objects;
};

void release(void* object)
{
    static LetGo& letGo = *new LetGo;  // outlives whatever thread still works at the end
    if (!Py_IsInitialized())
        return;
    if (PyGILState_Check())
        Py_DECREF(static_cast<PyObject*>(object));
    else
        letGo.add(static_cast<PyObject*>(object));
}

std::string shapeText(const py::ssize_t* shape, py::ssize_t count)
{
    std::string text = "(";
    for (py::ssize_t i = 0; i < count; ++i)
        text += (i == 0 ? "" : ", ") + std::to_string(shape[i]);
    return text + (count == 1 ? ",)" : ")");
}

}  // namespace

std::shared_ptr<const void> ownerOf(py::object object)
{
    return std::shared_ptr<void>(object.release().ptr(), release);
}

bool isChangeable(py::array array)
{
    for (;;) {
        if (array.writeable())
            return true;
        const py::object base = array.base();
        if (!base || !py::isinstance<py::array>(base))
            return false;
        array = py::reinterpret_borrow<py::array>(base);
    }
}

void throwNotOfType(const char* name, const py::array& array, const std::vector<py::ssize_t>& shape,
                    const py::dtype& type)
{
    std::string wanted = "(n";
    for (std::size_t i = 1; i < shape.size(); ++i)
        wanted += ", " + std::to_string(shape[i]);
    wanted += shape.size() == 1 ? ",)" : ")";
    throw py::type_error(std::string(name) + ": a contiguous array of shape " + wanted +
                         " and dtype " +
                         py::cast<std::string>(py::str(static_cast<const py::object&>(type))) +
                         " is wanted, not one of shape " + shapeText(array.shape(), array.ndim()) +
                         " and dtype " + py::cast<std::string>(py::str(py::object(array.dtype()))));
}

py::str toPython(const Pelon::String& text)
{
    PyObject* const decoded =
        PyUnicode_DecodeUTF8(text.c_str(), static_cast<Py_ssize_t>(text.size()), "surrogateescape");
    if (!decoded)
        throw py::error_already_set();
    return py::reinterpret_steal<py::str>(decoded);
}

Pelon::String toHost(const py::str& text)
{
    const auto bytes = py::reinterpret_steal<py::bytes>(
        PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape"));
    if (!bytes)
        throw py::error_already_set();
    return Pelon::String(std::string(bytes));
}

py::list toPython(const Pelon::Array<Pelon::String>& texts)
{
    py::list list(texts.size());
    py::str last;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i == 0 || texts[i] != texts[i - 1])
            last = toPython(texts[i]);
        list[i] = last;
    }
    return list;
}

ArrayPtr<Pelon::String> toHost(const py::list& texts)
{
    const auto array = Pelon::makeMutable<Pelon::Array<Pelon::String>>(texts.size());
    std::size_t i = 0;
    for (const py::handle text : texts)
        (*array)[i++] = toHost(py::cast<py::str>(text));
    return array;
}

}  // namespace TessaryPython
