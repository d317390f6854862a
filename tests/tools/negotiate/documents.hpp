// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

// Documents that are sound, one that is not, and what they make together.
namespace negotiate::tests {

inline const std::string soundRequest =
    R"({"protocolConfigs":[{"name":"Telemetry","version":{"major":2,"minor":1},)"
    R"("features":[{"name":"compression","value":"zstd","handling":"required"}]}]})";

/// Asks for something that `offers` do not have, but does not insist.
inline const std::string wishfulRequest =
    R"({"protocolConfigs":[{"name":"Telemetry","version":{"major":2,"minor":1},)"
    R"("features":[{"name":"batching","value":"on","handling":"preferred"}]}]})";

/// Insists on it.
inline const std::string vainRequest =
    R"({"protocolConfigs":[{"name":"Telemetry","version":{"major":2,"minor":1},)"
    R"("features":[{"name":"compression","value":"gzip","handling":"required"}]}]})";

/// With three findings, in lines 2, 3 and 4.
inline const std::string brokenRequest =
    "{\"protocolConfigs\":[\n"
    "{\"name\":\"A\",\"version\":{\"major\":1,\"minor\":0},\"features\":[],\"colour\":1},\n"
    "7,\n"
    "{\"name\":\"\",\"version\":{\"major\":1,\"minor\":0},\"features\":[]}]}\n";

inline const std::string soundAnswer =
    R"({"protocolResolutions":[{"name":"Telemetry","version":{"major":2,"minor":1},)"
    R"("resolutions":[{"name":"compression","message":"zstd","status":"success"}]}]})";

inline const std::string olderAnswer =
    R"({"protocolResolutions":[{"name":"Telemetry","version":{"major":2,"minor":0},)"
    R"("resolutions":[{"name":"compression","message":"zstd","status":"success"}]}]})";

inline const std::string emptyAnswer = R"({"protocolResolutions":[]})";

inline const std::string offers = R"({"protocolOffers":[{"name":"Telemetry","features":[)"
                                  R"({"name":"compression","value":"lz4","handling":"optional"},)"
                                  R"({"name":"compression","value":"zstd","handling":"optional"}]}],)"
                                  R"("software":{"name":"Hub","version":"1.3"}})";

inline const std::string namelessOffers = R"({"protocolOffers":[],"software":{"name":"","version":""}})";

}  // namespace negotiate::tests
