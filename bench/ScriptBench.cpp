// Cutting and parsing a megabyte of the kind of text that scene files are.

#include <benchmark/benchmark.h>

#include "script/Parser.h"
#include "script/Tokenizer.h"

namespace bench {

static String MakeText() {
    constexpr size_t MEGABYTE = 1000000;
    const String statement =
        "shape = createPolygon;\n"
        "shape.pos = [-12.5, 3.140625];\n"
        "shape.vecs = [[0.25, 0.5], [1.75, -0.5], [1.0, 2.0], [-0.125, 0.75]];\n"
        "shape.name = \"a shape of the scene\";\n"
        "shape.visible = true;\n"
        "update = { shape.angle = 0.5 };\n";
    String text;
    while (text.size() < MEGABYTE) text += statement;
    return text;
}

static void BenchTokenize(benchmark::State& state) {
    const String text = MakeText();
    for (auto _ : state) benchmark::DoNotOptimize(script::Tokenizer::Tokenize(text));
}

static void BenchParse(benchmark::State& state) {
    const script::TokenList tokens = script::Tokenizer::Tokenize(MakeText());
    for (auto _ : state) benchmark::DoNotOptimize(script::Parser::Instance().Parse(tokens));
}

BENCHMARK(BenchTokenize)->Name("tokenize/1MB")->Unit(benchmark::kMillisecond);
BENCHMARK(BenchParse)->Name("parse/1MB")->Unit(benchmark::kMillisecond);

}  // namespace bench
