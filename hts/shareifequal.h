#ifndef HTS_SHAREIFEQUAL_H
#define HTS_SHAREIFEQUAL_H

// Lets `value`, of one of the toolkit's implicitly shared types, use the memory of `other` if the
// two are equal. Texts that are read from a file have separate memory, and a file has millions of
// equal ones.
template<typename Value>
void shareIfEqual(Value& value, const Value& other)
{
    if (value == other)
        value = other;
}

#endif // HTS_SHAREIFEQUAL_H
