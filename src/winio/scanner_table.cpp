// Which handler serves a code. A switch, so that the library carries no table of addresses that
// every start of a program would have to relocate.
#include "winio/codes.h"

namespace tarn::winio {

code_handler handler_of(std::uint16_t code) {
    switch (code) {
        case code_of('A', 'C'):
            return handle_ac;
        case code_of('A', 'P'):
            return handle_ap;
        case code_of('A', 'V'):
            return handle_av;
        case code_of('A', 'W'):
            return handle_aw;
        case code_of('B', 'B'):
            return handle_bb;
        case code_of('B', 'C'):
            return handle_bc;
        case code_of('B', 'D'):
            return handle_bd;
        case code_of('B', 'F'):
            return handle_bf;
        case code_of('B', 'G'):
            return handle_bg;
        case code_of('B', 'H'):
            return handle_bh;
        case code_of('B', 'I'):
            return handle_bi;
        case code_of('B', 'M'):
            return handle_bm;
        case code_of('B', 'N'):
            return handle_bn;
        case code_of('B', 'O'):
            return handle_bo;
        case code_of('B', 'R'):
            return handle_br;
        case code_of('B', 'T'):
            return handle_bt;
        case code_of('B', 'U'):
            return handle_bu;
        case code_of('B', 'V'):
            return handle_bv;
        case code_of('B', 'X'):
            return handle_bx;
        case code_of('C', 'A'):
            return handle_ca;
        case code_of('C', 'B'):
            return handle_cb;
        case code_of('C', 'C'):
            return handle_cc;
        case code_of('C', 'D'):
            return handle_cd;
        case code_of('C', 'H'):
            return handle_ch;
        case code_of('C', 'I'):
            return handle_ci;
        case code_of('C', 'L'):
            return handle_cl;
        case code_of('C', 'M'):
            return handle_cm;
        case code_of('C', 'N'):
            return handle_cn;
        case code_of('C', 'O'):
            return handle_co;
        case code_of('C', 'S'):
            return handle_cs;
        case code_of('C', 'U'):
            return handle_cu;
        case code_of('C', 'V'):
            return handle_cv;
        case code_of('C', 'W'):
            return handle_cw;
        case code_of('D', 'C'):
            return handle_dc;
        case code_of('D', 'D'):
            return handle_dd;
        case code_of('D', 'E'):
            return handle_de;
        case code_of('D', 'F'):
            return handle_df;
        case code_of('D', 'G'):
            return handle_dg;
        case code_of('D', 'I'):
            return handle_di;
        case code_of('D', 'L'):
            return handle_dl;
        case code_of('D', 'P'):
            return handle_dp;
        case code_of('D', 'R'):
            return handle_dr;
        case code_of('D', 'T'):
            return handle_dt;
        case code_of('D', 'W'):
            return handle_dw;
        case code_of('D', 'Y'):
            return handle_dy;
        case code_of('E', 'B'):
            return handle_eb;
        case code_of('E', 'L'):
            return handle_el;
        case code_of('E', 'M'):
            return handle_em;
        case code_of('E', 'O'):
            return handle_eo;
        case code_of('E', 'P'):
            return handle_ep;
        case code_of('E', 'Q'):
            return handle_eq;
        case code_of('E', 'S'):
            return handle_es;
        case code_of('E', 'W'):
            return handle_ew;
        case code_of('E', 'X'):
            return handle_ex;
        case code_of('F', 'B'):
            return handle_fb;
        case code_of('F', 'D'):
            return handle_fd;
        case code_of('F', 'F'):
            return handle_ff;
        case code_of('F', 'H'):
            return handle_fh;
        case code_of('F', 'I'):
            return handle_fi;
        case code_of('F', 'L'):
            return handle_fl;
        case code_of('F', 'N'):
            return handle_fn;
        case code_of('F', 'P'):
            return handle_fp;
        case code_of('F', 'R'):
            return handle_fr;
        case code_of('F', 'S'):
            return handle_fs;
        case code_of('F', 'T'):
            return handle_ft;
        case code_of('F', 'X'):
            return handle_fx;
        case code_of('G', 'A'):
            return handle_ga;
        case code_of('G', 'B'):
            return handle_gb;
        case code_of('G', 'C'):
            return handle_gc;
        case code_of('G', 'D'):
            return handle_gd;
        case code_of('G', 'F'):
            return handle_gf;
        case code_of('G', 'I'):
            return handle_gi;
        case code_of('G', 'P'):
            return handle_gp;
        case code_of('G', 'R'):
            return handle_gr;
        case code_of('H', 'E'):
            return handle_he;
        case code_of('H', 'S'):
            return handle_hs;
        case code_of('H', 'T'):
            return handle_ht;
        case code_of('H', 'W'):
            return handle_hw;
        case code_of('H', 'X'):
            return handle_hx;
        case code_of('I', 'B'):
            return handle_ib;
        case code_of('I', 'C'):
            return handle_ic;
        case code_of('I', 'D'):
            return handle_id;
        case code_of('I', 'F'):
            return handle_if;
        case code_of('I', 'L'):
            return handle_il;
        case code_of('I', 'M'):
            return handle_im;
        case code_of('I', 'T'):
            return handle_it;
        case code_of('L', 'B'):
            return handle_lb;
        case code_of('L', 'C'):
            return handle_lc;
        case code_of('L', 'D'):
            return handle_ld;
        case code_of('L', 'N'):
            return handle_ln;
        case code_of('L', 'O'):
            return handle_lo;
        case code_of('L', 'S'):
            return handle_ls;
        case code_of('L', 'V'):
            return handle_lv;
        case code_of('L', 'W'):
            return handle_lw;
        case code_of('M', 'B'):
            return handle_mb;
        case code_of('M', 'C'):
            return handle_mc;
        case code_of('M', 'G'):
            return handle_mg;
        case code_of('M', 'I'):
            return handle_mi;
        case code_of('M', 'N'):
            return handle_mn;
        case code_of('M', 'S'):
            return handle_ms;
        case code_of('M', 'V'):
            return handle_mv;
        case code_of('N', 'C'):
            return handle_nc;
        case code_of('N', 'D'):
            return handle_nd;
        case code_of('N', 'L'):
            return handle_nl;
        case code_of('N', 'R'):
            return handle_nr;
        case code_of('N', 'S'):
            return handle_ns;
        case code_of('N', 'W'):
            return handle_nw;
        case code_of('O', 'B'):
            return handle_ob;
        case code_of('O', 'G'):
            return handle_og;
        case code_of('P', 'A'):
            return handle_pa;
        case code_of('P', 'B'):
            return handle_pb;
        case code_of('P', 'D'):
            return handle_pd;
        case code_of('P', 'H'):
            return handle_ph;
        case code_of('P', 'L'):
            return handle_pl;
        case code_of('P', 'M'):
            return handle_pm;
        case code_of('P', 'P'):
            return handle_pp;
        case code_of('P', 'R'):
            return handle_pr;
        case code_of('P', 'S'):
            return handle_ps;
        case code_of('P', 'T'):
            return handle_pt;
        case code_of('P', 'V'):
            return handle_pv;
        case code_of('Q', 'C'):
            return handle_qc;
        case code_of('Q', 'D'):
            return handle_qd;
        case code_of('Q', 'F'):
            return handle_qf;
        case code_of('Q', 'H'):
            return handle_qh;
        case code_of('Q', 'I'):
            return handle_qi;
        case code_of('Q', 'M'):
            return handle_qm;
        case code_of('Q', 'S'):
            return handle_qs;
        case code_of('R', 'B'):
            return handle_rb;
        case code_of('R', 'C'):
            return handle_rc;
        case code_of('R', 'D'):
            return handle_rd;
        case code_of('R', 'E'):
            return handle_re;
        case code_of('R', 'F'):
            return handle_rf;
        case code_of('R', 'J'):
            return handle_rj;
        case code_of('R', 'M'):
            return handle_rm;
        case code_of('R', 'P'):
            return handle_rp;
        case code_of('R', 'S'):
            return handle_rs;
        case code_of('S', 'B'):
            return handle_sb;
        case code_of('S', 'C'):
            return handle_sc;
        case code_of('S', 'D'):
            return handle_sd;
        case code_of('S', 'F'):
            return handle_sf;
        case code_of('S', 'H'):
            return handle_sh;
        case code_of('S', 'I'):
            return handle_si;
        case code_of('S', 'L'):
            return handle_sl;
        case code_of('S', 'M'):
            return handle_sm;
        case code_of('S', 'P'):
            return handle_sp;
        case code_of('S', 'S'):
            return handle_ss;
        case code_of('S', 'T'):
            return handle_st;
        case code_of('S', 'U'):
            return handle_su;
        case code_of('S', 'V'):
            return handle_sv;
        case code_of('S', 'Y'):
            return handle_sy;
        case code_of('S', 'Z'):
            return handle_sz;
        case code_of('T', 'A'):
            return handle_ta;
        case code_of('T', 'B'):
            return handle_tb;
        case code_of('T', 'C'):
            return handle_tc;
        case code_of('T', 'H'):
            return handle_th;
        case code_of('T', 'I'):
            return handle_ti;
        case code_of('T', 'L'):
            return handle_tl;
        case code_of('T', 'P'):
            return handle_tp;
        case code_of('T', 'S'):
            return handle_ts;
        case code_of('T', 'T'):
            return handle_tt;
        case code_of('T', 'V'):
            return handle_tv;
        case code_of('T', 'X'):
            return handle_tx;
        case code_of('T', 'Y'):
            return handle_ty;
        case code_of('U', 'D'):
            return handle_ud;
        case code_of('U', 'L'):
            return handle_ul;
        case code_of('U', 'P'):
            return handle_up;
        case code_of('U', 'W'):
            return handle_uw;
        case code_of('V', 'S'):
            return handle_vs;
        case code_of('V', 'X'):
            return handle_vx;
        case code_of('W', 'B'):
            return handle_wb;
        case code_of('W', 'C'):
            return handle_wc;
        case code_of('W', 'D'):
            return handle_wd;
        case code_of('W', 'E'):
            return handle_we;
        case code_of('W', 'F'):
            return handle_wf;
        case code_of('W', 'G'):
            return handle_wg;
        case code_of('W', 'I'):
            return handle_wi;
        case code_of('W', 'M'):
            return handle_wm;
        case code_of('W', 'P'):
            return handle_wp;
        case code_of('W', 'R'):
            return handle_wr;
        case code_of('W', 'S'):
            return handle_ws;
        case code_of('W', 'T'):
            return handle_wt;
        case code_of('W', 'W'):
            return handle_ww;
        case code_of('W', 'X'):
            return handle_wx;
        case code_of('X', 'D'):
            return handle_xd;
        case code_of('X', 'W'):
            return handle_xw;
        case code_of('Z', 'A'):
            return handle_za;
        case code_of('Z', 'B'):
            return handle_zb;
        case code_of('Z', 'C'):
            return handle_zc;
        case code_of('Z', 'Z'):
            return handle_zz;
        default:
            return nullptr;
    }
}

}  // namespace tarn::winio
