// The commands. Each writes its data to standard output; those that return a code
// go through several files, the others throw what is wrong with theirs.
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

struct CheckOptions {
    std::vector<std::string> files;
    bool json = false;
};

struct DiffOptions {
    std::string a;
    std::string b;
    bool ignoreTimes = false; ///< when the movie, its tracks and media were made and changed
    bool json = false;
};

int runInfo(const std::vector<std::string>& files, bool json); ///< goes on after a bad file; the worst code
int runCheck(const CheckOptions& options); ///< likewise; kFindings when there is a warning or an error
int runDiff(const DiffOptions& options);   ///< kFindings when they differ
void runTree(const std::string& file, bool json);
void runSamples(const SamplesOptions& options);
void runExtract(const ExtractOptions& options);
void runHint(const HintOptions& options);
void runHintRemoval(const HintOptions& options);
void runHintDump(const std::string& file);
void runSdp(const std::string& file);

} // namespace Ketra::Tool
