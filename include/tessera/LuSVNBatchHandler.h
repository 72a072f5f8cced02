// What a batch of copies, moves or imports asks its caller about each item
// (LuSVNNode::moveNodes, LuSVNNode::importNodes).
//
//   class Overwriter : public LuSVNBatchHandler {
//       std::int32_t batchShouldOverwriteItem(const LuSVNPath::Path&, const LuSVNPath::Path&,
//                                             const std::any&) override { return LuSVNBatchAnswerProceed; }
//   };
//   LuSVNNode::moveNodes(sources, targets, false, options, std::make_shared<Overwriter>(), {}, context);
//
// Every question gets the item's source and destination and the batch's
// contextInfo, a value of the caller's that the batch hands on unchanged.
// The handler is called on the batch's thread, between items; an exception
// it raises ends the batch and reaches the caller.
#pragma once

#include <any>
#include <cstdint>

#include <tessera/LuSVNExport.h>
#include <tessera/LuSVNPath.h>

/// A handler's answer about one item of a batch.
enum LuSVNBatchAnswer : std::int32_t {
    LuSVNBatchAnswerProceed = 0,  ///< do the item; over an existing destination, delete that first
    LuSVNBatchAnswerSkip = 1,     ///< leave the item out and go on with the next
    LuSVNBatchAnswerCancel = 2,   ///< end the batch: the operation raises its cancellation
};

/// The caller's say about each item of a batch; each answer has a default,
/// so a handler overrides only the questions it cares about.
class TESSERA_EXPORT LuSVNBatchHandler {
public:
    virtual ~LuSVNBatchHandler() = default;

    /// Before each item. The default proceeds.
    virtual LuSVNBatchAnswer batchWillProcessItem(const LuSVNPath::Path& source, const LuSVNPath::Path& destination,
                                                  const std::any& contextInfo);

    /// When the local destination of a copy or move exists already: a
    /// LuSVNBatchAnswer. Proceed deletes the destination
    /// (LuSVNNode::deleteNodeAtPath) and does the item, Skip leaves the item
    /// out, Cancel ends the batch; any other value raises "Unrecognised
    /// overwrite result". The default skips.
    virtual std::int32_t batchShouldOverwriteItem(const LuSVNPath::Path& source, const LuSVNPath::Path& destination,
                                                  const std::any& contextInfo);

    /// After each item that was done, with the revision it committed
    /// (LuSVNInvalidRevision for a change of a working copy). The default
    /// does nothing.
    virtual void batchDidProcessItem(const LuSVNPath::Path& source, const LuSVNPath::Path& destination,
                                     std::int32_t revision, const std::any& contextInfo);
};
