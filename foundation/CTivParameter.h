#pragma once

#include <string>
#include <utility>

// Typed values, some optional, that operators and image file code exchange. The interfaces stand without a namespace,
// their implementations in namespace ctiv.

template <class T>
class CTivParameter {
public:
    virtual T* Get() = 0;
    virtual T* Set() = 0;
    virtual ~CTivParameter() = default;
};

template <class T>
class CTivOptionalParameter {
public:
    virtual bool IsPresent() const = 0;
    virtual void SetPresent(bool present) = 0;
    virtual T* Set() = 0;  ///< marks it present
    virtual T* Get() = 0;
    virtual ~CTivOptionalParameter() = default;
};

/// A text gives its characters and takes a new text, which marks it present.
template <>
class CTivOptionalParameter<std::string> {
public:
    virtual bool IsPresent() const = 0;
    virtual void SetPresent(bool present) = 0;
    virtual const char* Get() const = 0;
    virtual void Set(const std::string& text) = 0;
    virtual ~CTivOptionalParameter() = default;
};

template <class T>
class CTivResult {
public:
    virtual const T& Get() const = 0;
    virtual ~CTivResult() = default;
};

template <class T>
class CTivOptionalResult {
public:
    virtual bool IsPresent() const = 0;
    virtual void SetPresent(bool present) = 0;
    virtual const T& Get() const = 0;
    virtual ~CTivOptionalResult() = default;
};

namespace ctiv {

template <class T>
class Parameter : public CTivParameter<T> {
public:
    T* Get() override { return &value_; }
    T* Set() override { return &value_; }
    const T& Value() const { return value_; }

private:
    T value_{};
};

template <class T>
class OptionalParameter : public CTivOptionalParameter<T> {
public:
    bool IsPresent() const override { return present_; }
    void SetPresent(bool present) override { present_ = present; }
    T* Set() override {
        present_ = true;
        return &value_;
    }
    T* Get() override { return &value_; }
    const T& Value() const { return value_; }

private:
    bool present_ = false;
    T value_{};
};

template <>
class OptionalParameter<std::string> : public CTivOptionalParameter<std::string> {
public:
    bool IsPresent() const override { return present_; }
    void SetPresent(bool present) override { present_ = present; }
    const char* Get() const override { return value_.c_str(); }
    void Set(const std::string& text) override {
        value_ = text;
        present_ = true;
    }
    const std::string& Value() const { return value_; }

private:
    bool present_ = false;
    std::string value_;
};

template <class T>
class Result : public CTivResult<T> {
public:
    Result() = default;
    explicit Result(T value) : value_(std::move(value)) {}
    const T& Get() const override { return value_; }

private:
    T value_{};
};

template <class T>
class OptionalResult : public CTivOptionalResult<T> {
public:
    OptionalResult() = default;
    explicit OptionalResult(T value) : present_(true), value_(std::move(value)) {}
    bool IsPresent() const override { return present_; }
    void SetPresent(bool present) override { present_ = present; }
    const T& Get() const override { return value_; }

private:
    bool present_ = false;
    T value_{};
};

}  // namespace ctiv
