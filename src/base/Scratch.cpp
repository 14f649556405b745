#include <Tessary/Scratch.h>

#include <utility>

namespace Tessary {
namespace {

template <class T>
T* allocated(std::size_t size)
{
    return size != 0 ? new T[size] : nullptr;
}

}  // namespace

template <class T>
Scratch<T>::Scratch() noexcept : m_size(0), m_data(nullptr)
{}

template <class T>
Scratch<T>::Scratch(std::size_t size) : m_size(size), m_data(allocated<T>(size))
{}

template <class T>
Scratch<T>::Scratch(Scratch&& other) noexcept
    : m_size(std::exchange(other.m_size, 0)), m_data(std::exchange(other.m_data, nullptr))
{}

template <class T>
Scratch<T>::~Scratch()
{
    delete[] m_data;
}

template <class T>
Scratch<T>& Scratch<T>::operator=(Scratch other) noexcept
{
    std::swap(m_size, other.m_size);
    std::swap(m_data, other.m_data);
    return *this;
}

template <class T>
T* Scratch<T>::data() noexcept
{
    return m_data;
}

template <class T>
const T* Scratch<T>::data() const noexcept
{
    return m_data;
}

template <class T>
std::size_t Scratch<T>::size() const noexcept
{
    return m_size;
}

template <class T>
void Scratch<T>::resize(std::size_t size)
{
    m_size = 0;
    delete[] std::exchange(m_data, nullptr);
    m_data = allocated<T>(size);
    m_size = size;
}

template <class T>
void Scratch<T>::grow(std::size_t size)
{
    if (size > m_size)
        resize(size);
}

template class Scratch<float>;
template class Scratch<double>;

}  // namespace Tessary
