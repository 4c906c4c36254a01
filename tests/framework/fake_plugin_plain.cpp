#include "yfw_map.h"

extern "C" kerrno ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_lvla_aps(yfw_map_ctx,
                                                                                 const struct kidl_yfw_datatree *,
                                                                                 struct kidl_yfw_datatree *);

kerrno ymap_o2n_oc_opt_psm_openconfigtransportlineprotection_lvla_aps(yfw_map_ctx ctx, const struct kidl_yfw_datatree *,
                                                                      struct kidl_yfw_datatree *) {
    return ctx == nullptr ? YMAP_ERR_INVALID_ARGS : KERR_SUCCESS;
}
