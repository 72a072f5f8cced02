#include <tessera/LuSVNMergeRevisionRange.h>

std::shared_ptr<LuSVNMergeRevisionRange> LuSVNMergeRevisionRange::all()
{
    return std::make_shared<LuSVNMergeRevisionRange>();
}

std::shared_ptr<LuSVNMergeRevisionRange> LuSVNMergeRevisionRange::from(Revision first, Revision last)
{
    return std::make_shared<LuSVNMergeRevisionRange>(std::move(first), std::move(last));
}

std::shared_ptr<LuSVNMergeRevisionRange> LuSVNMergeRevisionRange::from(Revision first)
{
    return from(std::move(first), LuSVNRevision::UNSPECIFIED());
}

std::shared_ptr<LuSVNMergeRevisionRange> LuSVNMergeRevisionRange::to(Revision last)
{
    return from(LuSVNRevision::UNSPECIFIED(), std::move(last));
}

std::shared_ptr<LuSVNRevisionRange> LuSVNMergeRevisionRange::copy() const
{
    return std::make_shared<LuSVNMergeRevisionRange>(*this);
}
