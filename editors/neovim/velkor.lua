-- Velkor mission sources in Neovim (0.7 or later): file type detection and the language server.
--
-- Copy this file to ~/.config/nvim/lua/velkor.lua and add to init.lua:
--
--   require('velkor').setup({
--     cmd = { 'velkorc', 'lsp' },          -- the full path when velkorc is not on PATH
--     search_path = { '/path/to/includes' } -- optional: folders after the unit's own (velkorc -I)
--   })
--
-- Units end in ".pas" like Pascal programs; a ".pas" file is taken for a Velkor source when its first
-- word is a unit kind (mission, sector, series, unit, iff, project) and it has no Pascal "interface".
local M = {}

local unit_kinds = { mission = true, sector = true, series = true, unit = true, iff = true, project = true }

-- Whether the buffer holds a Velkor source rather than Pascal.
function M.is_velkor_source(bufnr)
  local lines = vim.api.nvim_buf_get_lines(bufnr, 0, 200, false)
  local in_comment = false
  local first
  for _, line in ipairs(lines) do
    if in_comment then
      local close = line:find('*/', 1, true)
      if not close then goto continue end
      line = line:sub(close + 2)
      in_comment = false
    end
    line = line:gsub('/%*.-%*/', ''):gsub('//.*', '')
    if line:find('/*', 1, true) then
      line = line:sub(1, line:find('/*', 1, true) - 1)
      in_comment = true
    end
    if first == nil then first = line:match('^%s*(%a+)') end
    if line:lower():match('^%s*interface%s*$') then return false end
    ::continue::
  end
  return first ~= nil and unit_kinds[first:lower()] == true
end

function M.setup(opts)
  opts = opts or {}
  local cmd = opts.cmd or { 'velkorc', 'lsp' }
  local settings = { velkor = { searchPath = opts.search_path or {} } }
  local client_id
  local group = vim.api.nvim_create_augroup('velkor', { clear = true })
  vim.api.nvim_create_autocmd({ 'BufRead', 'BufNewFile' }, {
    group = group,
    pattern = '*.pas',
    callback = function(args)
      if M.is_velkor_source(args.buf) then vim.bo[args.buf].filetype = 'velkor' end
    end,
  })
  vim.api.nvim_create_autocmd('FileType', {
    group = group,
    pattern = 'velkor',
    callback = function(args)
      vim.bo[args.buf].syntax = 'pascal'
      vim.bo[args.buf].commentstring = '// %s'
      -- One server for every Velkor buffer: workspace symbols then cover all open units.
      if not client_id or vim.lsp.client_is_stopped(client_id) then
        client_id = vim.lsp.start_client({
          name = 'velkor',
          cmd = cmd,
          root_dir = vim.fn.fnamemodify(vim.api.nvim_buf_get_name(args.buf), ':p:h'),
          init_options = settings.velkor,
          settings = settings,
        })
      end
      if client_id then vim.lsp.buf_attach_client(args.buf, client_id) end
    end,
  })
end

return M
