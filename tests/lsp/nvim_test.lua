-- Neovim's own LSP client with the documented configuration (editors/neovim/velkor.lua): a demo mission
-- with an error on disk is opened headless; the compiler's error must arrive as a diagnostic on its line,
-- and a completion request must bring the include's function. Exits with status 0 when all holds.
local velkorc = os.getenv('VELKORC')
local source = os.getenv('VELKOR_SOURCE_DIR')

local function fail(message)
  io.stderr:write('FAILED: ' .. message .. '\n')
  vim.cmd('cquit 1')
end

local ok, err = pcall(function()
  package.path = source .. '/editors/neovim/?.lua;' .. package.path
  require('velkor').setup({ cmd = { velkorc, 'lsp' } })

  -- The campaign in a scratch folder, its string file assembled, the mission broken.
  local dir = vim.fn.tempname()
  vim.fn.mkdir(dir, 'p')
  for _, name in ipairs(vim.fn.readdir(source .. '/examples/campaign')) do
    vim.fn.writefile(vim.fn.readfile(source .. '/examples/campaign/' .. name, 'b'), dir .. '/' .. name, 'b')
  end
  vim.fn.system({ velkorc, 'asm', '--out-dir', dir, dir .. '/campaign_eng.txt' })
  local file = dir .. '/patrol.pas'
  local lines = vim.fn.readfile(file, 'b')
  for i, line in ipairs(lines) do
    lines[i] = line:gsub('OrderFollow%(Alpha2, Alpha1%)', 'OrderFollow(Alpha2, Nowhere)')
  end
  vim.fn.writefile(lines, file, 'b')

  -- What velkorc compile says about it.
  local stderr = vim.fn.system({ velkorc, 'compile', '--no-halt', '-v', '0', '-o', dir .. '/out.txt', file })
  local line, message = stderr:match('%[[^%]]*, (%d+)%] ERROR: ([^\r\n]*)')
  if not line then return fail('velkorc compile reports no error: ' .. stderr) end

  vim.cmd('edit ' .. vim.fn.fnameescape(file))
  local buf = vim.api.nvim_get_current_buf()
  if vim.bo[buf].filetype ~= 'velkor' then return fail('file type ' .. vim.bo[buf].filetype) end

  local errors = {}
  vim.wait(30000, function()
    errors = vim.diagnostic.get(buf, { severity = vim.diagnostic.severity.ERROR })
    return #errors > 0
  end, 50)
  if #errors == 0 then return fail('no diagnostic arrived') end
  if errors[1].message ~= message or errors[1].lnum ~= tonumber(line) - 1 then
    return fail(('diagnostic %q on line %d, expected %q on line %d'):format(
      errors[1].message, errors[1].lnum + 1, message, tonumber(line)))
  end

  -- Completion after "Fl" in a call of the include's FlyTo.
  local row, col
  for i, text in ipairs(vim.api.nvim_buf_get_lines(buf, 0, -1, false)) do
    local at = text:find('FlyTo(Alpha1', 1, true)
    if at and not row then row, col = i - 1, at + 1 end
  end
  local responses = vim.lsp.buf_request_sync(buf, 'textDocument/completion', {
    textDocument = { uri = vim.uri_from_bufnr(buf) },
    position = { line = row, character = col },
  }, 30000)
  local found = false
  for _, response in pairs(responses or {}) do
    local items = response.result and (response.result.items or response.result) or {}
    for _, item in ipairs(items) do found = found or item.label == 'FlyTo' end
  end
  if not found then return fail('no completion item FlyTo: ' .. vim.inspect(responses)) end
  vim.cmd('qall!')
end)
if not ok then fail(tostring(err)) end
