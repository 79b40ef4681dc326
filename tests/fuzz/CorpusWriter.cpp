// Writes one document for every persistent class into a folder: the seeds of the reader's fuzzing.

#include <cstdio>
#include <string>

#include "support/Samples.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fputs("usage: kt_fuzz_corpus FOLDER\n", stderr);
    return 2;
  }
  for (const Sample& sample : allSamples()) {
    const auto object = sample.make();
    if (!KtXmlWriter::writeFile(std::string(argv[1]) + "/" + sample.name + ".xml", *object)) {
      return 1;
    }
  }
  return 0;
}
