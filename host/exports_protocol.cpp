// Protocol: the current conditions and their intervals.
#include <fmt/core.h>

#include <algorithm>

#include "host/exports.h"
#include "host/fields.h"
#include "host/operation.h"
#include "host/workspace.h"

namespace {

using host::LentArray;
using host::Operation;
using host::perform;
using host::Protocol;
using host::ProtocolCondition;

Protocol& currentProtocol(Operation& op) {
  Protocol* protocol = op.workspace().protocol();
  op.require(protocol != nullptr, "there is no protocol");
  return *protocol;
}

ProtocolCondition& conditionAt(Operation& op, int index) {
  Protocol& protocol = currentProtocol(op);
  ProtocolCondition& condition =
      protocol.conditions[op.index(index, protocol.conditions.size(), "condition")];
  op.require(condition.starts.intact() && condition.ends.intact(),
             "intervals were written outside condition " + std::to_string(index));
  return condition;
}

LentArray<std::int32_t> copied(const std::int32_t* values, std::int32_t count) {
  LentArray<std::int32_t> copy(static_cast<std::size_t>(count));
  std::copy_n(values, count, copy.data());
  return copy;
}

// The array with one more value at its end.
LentArray<std::int32_t> extended(const LentArray<std::int32_t>& values, std::int32_t value) {
  LentArray<std::int32_t> longer(values.size() + 1);
  std::copy(values.begin(), values.end(), longer.begin());
  longer.data()[values.size()] = value;
  return longer;
}

void requireInterval(Operation& op, std::int32_t start, std::int32_t end) {
  op.require(start <= end, fmt::format("the interval ({}, {}) is inverted", start, end));
}

ProtocolCondition conditionFrom(Operation& op, const ProtocolCondition_Header& header) {
  const std::string name = op.field(header.name, "condition name");
  op.require(header.nrOfIntervals >= 0, "the number of intervals is negative");
  if (header.nrOfIntervals == 0) return {name, {}, {}};
  op.record(header.starts, "array of starts");
  op.record(header.ends, "array of ends");
  for (int i = 0; i < header.nrOfIntervals; ++i) requireInterval(op, header.starts[i], header.ends[i]);
  return {name, copied(header.starts, header.nrOfIntervals), copied(header.ends, header.nrOfIntervals)};
}

void requireTimeResolution(Operation& op, std::int32_t resolution) {
  op.require(resolution == kProtocolInVolumes || resolution == kProtocolInMilliseconds,
             "the time resolution is neither 1 (volumes) nor 2 (milliseconds)");
}

}  // namespace

int zqClearProtocol() {
  return perform("zqClearProtocol", 0, [&](Operation& op) {
    op.workspace().clearProtocol();
    return 1;
  });
}

int zqLoadProtocol(const char* path) {
  return perform("zqLoadProtocol", 0, [&](Operation& op) {
    op.workspace().loadProtocol(op.text(path, "path"));
    return 1;
  });
}

int zqSaveProtocol(const char* path) {
  return perform("zqSaveProtocol", 0, [&](Operation& op) {
    currentProtocol(op);
    op.workspace().saveProtocol(op.text(path, "path"));
    return 1;
  });
}

int zqGetProtocol(Protocol_Header* header) {
  return perform("zqGetProtocol", 0, [&](Operation& op) {
    op.record(header, "header") = Protocol_Header{};
    const Protocol* protocol = op.workspace().protocol();
    if (protocol == nullptr) return 0;
    header->nrOfConditions = static_cast<std::int32_t>(protocol->conditions.size());
    header->timeResolution = protocol->timeResolution;
    host::fillField(protocol->experimentName, header->experimentName);
    host::fillField(protocol->path, header->fileName);
    return 1;
  });
}

// Changes name, file and time unit; a new protocol begins without conditions.
int zqSetProtocol(Protocol_Header* header) {
  return perform("zqSetProtocol", 0, [&](Operation& op) {
    requireTimeResolution(op, op.record(header, "header").timeResolution);
    if (op.workspace().protocol() == nullptr) op.workspace().setProtocol({});
    Protocol& protocol = *op.workspace().protocol();
    protocol.experimentName = op.field(header->experimentName, "experiment name");
    protocol.path = op.field(header->fileName, "file name");
    protocol.timeResolution = header->timeResolution;
    return 1;
  });
}

int zqGetProtocolCondition(int index, ProtocolCondition_Header* header) {
  return perform("zqGetProtocolCondition", 0, [&](Operation& op) {
    ProtocolCondition& condition = conditionAt(op, index);
    op.record(header, "header") = ProtocolCondition_Header{};
    host::fillField(condition.name, header->name);
    header->nrOfIntervals = static_cast<std::int32_t>(condition.starts.size());
    header->starts = condition.starts.data();
    header->ends = condition.ends.data();
    return 1;
  });
}

int zqAddProtocolCondition(ProtocolCondition_Header* header) {
  return perform("zqAddProtocolCondition", 0, [&](Operation& op) {
    currentProtocol(op).conditions.push_back(conditionFrom(op, op.record(header, "header")));
    return 1;
  });
}

int zqAddProtocolConditionInterval(int index, int start, int end) {
  return perform("zqAddProtocolConditionInterval", 0, [&](Operation& op) {
    requireInterval(op, start, end);
    ProtocolCondition& condition = conditionAt(op, index);
    condition.starts = extended(condition.starts, start);
    condition.ends = extended(condition.ends, end);
    return 1;
  });
}
