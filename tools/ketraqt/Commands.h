// The commands. Each writes its data to standard output; all but the first throw what is wrong with the file.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Ketra::Tool {

struct SamplesOptions {
    std::string file;
    unsigned int track = 0;
    std::optional<double> fromTime; ///< seconds
    std::optional<unsigned int> fromSample;
    std::optional<unsigned int> count;
    bool json = false;
};

struct ExtractOptions {
    std::string file;
    unsigned int track = 0;
    std::string output; ///< "-": standard output
};

struct HintOptions {
    std::string file;
    std::string output;
    unsigned int mtu = 1450;          ///< bytes of a packet with its IP, UDP and RTP headers
    std::vector<unsigned int> tracks; ///< IDs; empty: all that can be hinted
    bool force = false;               ///< the output may be replaced
    bool remove = false;
    bool dump = false;
};

int runInfo(const std::vector<std::string>& files, bool json); ///< goes on after a bad file; the worst code
void runTree(const std::string& file, bool json);
void runSamples(const SamplesOptions& options);
void runExtract(const ExtractOptions& options);
void runHint(const HintOptions& options);
void runHintRemoval(const HintOptions& options);
void runHintDump(const std::string& file);
void runSdp(const std::string& file);

} // namespace Ketra::Tool
