// Builds one array of each kind with the array library and shows it as the language would.
// At the end it checks that every array it made is gone again.
#include <complex>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <ka/ka.hpp>

namespace {

std::vector<ka::ArrayPtr> items(ka::ArrayPtr a, ka::ArrayPtr b, ka::ArrayPtr c) {
    std::vector<ka::ArrayPtr> out;
    out.push_back(std::move(a));
    out.push_back(std::move(b));
    out.push_back(std::move(c));
    return out;
}

void showNumbers() {
    ka::print(std::cout, ka::fromRows<double>(2, 3, {1, 2, 3, 4, 5, 6}).get(), "A");
    ka::print(std::cout, ka::row({0.5, -1.25, 3.0}).get(), "v");
    ka::print(std::cout, ka::row<std::int16_t>({-3, 0, 250}).get(), "counts");
    ka::print(std::cout, ka::row({true, false, true}).get(), "mask");
    ka::print(std::cout, ka::scalar(std::complex<double>(1.5, -2)).get(), "z");
    ka::print(std::cout, ka::createNumeric(kaDOUBLE_CLASS, {0, 0}).get(), "nothing");
    ka::print(std::cout,
              ka::createFrom<double>({2, 2, 2}, std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8}).get(),
              "cube");
}

void showText() {
    ka::print(std::cout, ka::charArray("Grüße, KELDOR").get(), "greeting");
}

void showContainers() {
    ka::print(
        std::cout,
        ka::createSparse(kaDOUBLE_CLASS, 4, 4, {{0, 0, 2.0}, {3, 1, -1.0}, {2, 3, 0.5}}).get(),
        "S");
    ka::print(std::cout,
              ka::createCell({1, 3}, items(ka::scalar(42.0), ka::charArray("text"),
                                           ka::createNumeric(kaSINGLE_CLASS, {3, 3})))
                  .get(),
              "c");
    ka::print(
        std::cout,
        ka::createStruct({1, 1}, {"name", "born", "languages"},
                         items(ka::charArray("Ada"), ka::scalar(1815.0), ka::createCell({1, 2})))
            .get(),
        "person");
}

void showHandlesAndObjects() {
    ka::print(std::cout, ka::createFunctionHandle("sin").get(), "f");

    // An instance of a class of the class system, with the class's data as payload.
    const auto stringClass = static_cast<kaClassID>(19);
    auto words = std::make_shared<std::vector<std::u16string>>(
        std::vector<std::u16string>{u"alpha", u"beta"});
    ka::ArrayPtr s = ka::createObject(stringClass, "string", words, {1, 2});
    ka::print(std::cout, s.get(), "s");
    ka::setObjectFormatter(stringClass, [](const kaArray* a) {
        std::string text;
        for (const std::u16string& word : *ka::payloadAs<std::vector<std::u16string>>(a)) {
            if (!text.empty()) text += "    ";
            text += '"';
            text += ka::toUtf8(word);
            text += '"';
        }
        return text;
    });
    ka::print(std::cout, s.get(), "s");
    ka::setObjectFormatter(stringClass, {});
}

}  // namespace

int main() {
    showNumbers();
    showText();
    showContainers();
    showHandlesAndObjects();
    std::cout << "live arrays at exit: " << ka::liveArrayCount() << "\n";
    return ka::liveArrayCount() == 0 ? 0 : 1;
}
